#pragma once

#include <QString>
#include <QWidget>
#include <memory>
#include <string>

#include "Platform/Views.h"

namespace zephlin {

/// A widget that shows the view and its subviews, laid out, and follows their changes. The widget
/// belongs to `parent` and keeps the views alive; views may outlive it. Main thread.
QWidget* realise(const std::shared_ptr<View>& view, QWidget* parent);

/// A button's title for Qt, where an ampersand would mark a mnemonic.
QString buttonText(const std::string& title);

}  // namespace zephlin
