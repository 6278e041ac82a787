#include "Tests/Contract/PanelItem.h"

#include <algorithm>

namespace zephlin::contract {

namespace {

/// A label as a panel shows it: an underscore marks a shortcut, two are one
/// (com.canonical.dbusmenu).
std::string withoutMnemonic(const std::string& label) {
  std::string shown;
  for (std::size_t index = 0; index < label.size(); ++index) {
    if (label[index] == '_') {
      ++index;
    }
    shown += label.substr(index, 1);
  }
  return shown;
}

std::string keyEquivalentOf(const test::MenuEntry& entry) {
  QString keys = QString::fromStdString(entry.shortcut());
  return keys.replace("Control", "Command").replace('+', '-').toStdString();
}

/// Whether any pixel is not transparent.
bool isVisible(const test::TrayPicture& picture) {
  constexpr qsizetype bytesPerPixel = 4;
  for (qsizetype alpha = 0; alpha < picture.pixels.size(); alpha += bytesPerPixel) {
    if (picture.pixels[alpha] != 0) {
      return true;
    }
  }
  return false;
}

}  // namespace

std::vector<ShownMenuItem> panelMenuItems(test::TrayItem& item) {
  std::vector<ShownMenuItem> items;
  for (const test::MenuEntry& entry : item.entries()) {
    items.push_back({.title = withoutMnemonic(entry.label()),
                     .isSeparator = entry.isSeparator(),
                     .isEnabled = entry.isEnabled(),
                     .isChecked = entry.isChecked(),
                     .keyEquivalent = keyEquivalentOf(entry)});
  }
  return items;
}

bool choosePanelMenuItem(test::TrayItem& item, const std::string& title) {
  for (const test::MenuEntry& entry : item.entries()) {
    if (withoutMnemonic(entry.label()) == title) {
      item.click(entry.id);
      return true;
    }
  }
  return false;
}

bool hasPanelImage(test::TrayItem& item) {
  const auto pictures = item.pictures();
  return !item.text("IconName").empty() || std::any_of(pictures.begin(), pictures.end(), isVisible);
}

}  // namespace zephlin::contract
