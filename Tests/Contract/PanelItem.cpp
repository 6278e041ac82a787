#include "Tests/Contract/PanelItem.h"

#include <QDBusArgument>
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

/// A list of key equivalents, each a list of keys.
std::string keyEquivalentOf(const test::ShownEntry& entry) {
  const auto shortcuts = qdbus_cast<QList<QStringList>>(entry.properties.value("shortcut"));
  QStringList keys = shortcuts.value(0);
  return keys.replaceInStrings("Control", "Command").join('-').toStdString();
}

/// Whether any pixel is not transparent.
bool isVisible(const test::ShownPicture& picture) {
  constexpr qsizetype bytesPerPixel = 4;
  for (qsizetype alpha = 0; alpha < picture.pixels.size(); alpha += bytesPerPixel) {
    if (picture.pixels[alpha] != 0) {
      return true;
    }
  }
  return false;
}

}  // namespace

std::vector<ShownMenuItem> panelMenuItems(test::ShownItem& item) {
  std::vector<ShownMenuItem> items;
  for (const test::ShownEntry& entry : item.layout()) {
    items.push_back({.title = withoutMnemonic(entry.label()),
                     .isSeparator = entry.properties.value("type") == "separator",
                     .isEnabled = entry.properties.value("enabled", true).toBool(),
                     .isChecked = entry.properties.value("toggle-state").toInt() == 1,
                     .keyEquivalent = keyEquivalentOf(entry)});
  }
  return items;
}

bool choosePanelMenuItem(test::ShownItem& item, const std::string& title) {
  for (const test::ShownEntry& entry : item.layout()) {
    if (withoutMnemonic(entry.label()) == title) {
      item.choose(entry);
      return true;
    }
  }
  return false;
}

bool hasPanelImage(test::ShownItem& item) {
  const auto pictures = item.pictures();
  return !item.text("IconName").empty() || std::any_of(pictures.begin(), pictures.end(), isVisible);
}

}  // namespace zephlin::contract
