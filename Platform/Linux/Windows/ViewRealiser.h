#pragma once

#include <QString>
#include <QWidget>
#include <memory>
#include <string>

#include "Platform/Views.h"

namespace zephlin {

/// A widget that shows the view and all below it, laid out, and follows what changes in them. The
/// widget belongs to `parent` and keeps the views alive; views that outlive it are let go. Main
/// thread.
QWidget* realise(const std::shared_ptr<View>& view, QWidget* parent);

/// A button's title as Qt wants it, to which an ampersand is the mark of a shortcut.
QString buttonText(const std::string& title);

}  // namespace zephlin
