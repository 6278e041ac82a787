#pragma once

#include <string>
#include <vector>

#include "Tests/Contract/ContractDesktop.h"
#include "Tests/Unit/Linux/StatusItem/ShownItem.h"

namespace zephlin::contract {

/// What a panel shows of an item that it knows over D-Bus.
std::vector<ShownMenuItem> panelMenuItems(test::ShownItem& item);
/// False where the menu has no such entry.
bool choosePanelMenuItem(test::ShownItem& item, const std::string& title);
/// Whether there is anything to be seen.
bool hasPanelImage(test::ShownItem& item);

}  // namespace zephlin::contract
