#pragma once

#include <QString>
#include <QWidget>
#include <string>

#include "Platform/Views.h"

namespace zephlin {

/// A widget that shows the view and its subviews, laid out, with all lengths in the views' points.
/// It belongs to `parent` and must not outlive the views. Main thread.
QWidget* realise(View& view, QWidget* parent, qreal pixelsPerPoint);

/// How many device-independent pixels a point has: one, or more if the user's font is larger than
/// usual. Then windows grow with their texts. Main thread.
qreal usualPixelsPerPoint();

/// Shows the changes of the views that need display, in a widget that `realise` returned. Main
/// thread.
void displayIfNeeded(QWidget& realised);

/// A button's title for Qt, where an ampersand would mark a mnemonic.
QString buttonText(const std::string& title);

}  // namespace zephlin
