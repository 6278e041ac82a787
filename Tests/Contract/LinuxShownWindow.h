#pragma once

#include <QWidget>

#include "Tests/Contract/ShownWindow.h"

namespace zephlin::contract {

/// Reads back what the widgets of the window show. Colours and boxes are seen in the pixels.
ShownWindow readBack(QWidget& window);

}  // namespace zephlin::contract
