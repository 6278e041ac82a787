#pragma once

#include <QWidget>
#include <string>
#include <vector>

#include "Tests/Contract/ContractDesktop.h"

namespace zephlin::contract {

/// The message boxes that are shown.
std::vector<ShownAlert> shownAlerts();
/// The window with this title, if it is shown, or null.
QWidget* shownWindow(const std::string& title);
std::vector<std::string> labelTexts(const QWidget& window);
/// False where the window has no such button.
bool pressButton(const QWidget& window, const std::string& title);

/// Reads back what the widgets of the window show. Colours and boxes are seen in the pixels.
ShownWindow readBack(QWidget& window);

}  // namespace zephlin::contract
