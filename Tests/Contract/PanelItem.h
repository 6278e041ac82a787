#pragma once

#include <string>
#include <vector>

#include "Tests/Contract/ContractDesktop.h"
#include "Tests/Support/TrayItem.h"

namespace zephlin::contract {

/// What a panel shows of an item that it knows over D-Bus.
std::vector<ShownMenuItem> panelMenuItems(test::TrayItem& item);
/// False where the menu has no such entry.
bool choosePanelMenuItem(test::TrayItem& item, const std::string& title);
/// Whether there is anything to be seen.
bool hasPanelImage(test::TrayItem& item);

}  // namespace zephlin::contract
