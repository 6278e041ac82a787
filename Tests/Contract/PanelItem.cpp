#include "Tests/Contract/PanelItem.h"

#include <QDBusArgument>

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

/// Whether any pixel of the pictures is not transparent (StatusNotifierItem, IconPixmap).
bool hasVisiblePicture(const QDBusArgument& pictures) {
  bool isVisible = false;
  pictures.beginArray();
  while (!pictures.atEnd()) {
    int width = 0;
    int height = 0;
    QByteArray pixels;
    pictures.beginStructure();
    pictures >> width >> height >> pixels;
    pictures.endStructure();
    constexpr qsizetype bytesPerPixel = 4;
    for (qsizetype alpha = 0; alpha < pixels.size(); alpha += bytesPerPixel) {
      isVisible = isVisible || pixels[alpha] != 0;
    }
  }
  pictures.endArray();
  return isVisible;
}

}  // namespace

std::vector<ShownMenuItem> panelMenuItems(test::ShownItem& item) {
  std::vector<ShownMenuItem> items;
  for (const test::ShownEntry& entry : item.layout()) {
    items.push_back({.title = withoutMnemonic(entry.label()),
                     .isSeparator = entry.properties.value("type") == "separator",
                     .isEnabled = entry.properties.value("enabled", true).toBool(),
                     .isChecked = entry.properties.value("toggle-state").toInt() == 1});
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
  return !item.text("IconName").empty() ||
         hasVisiblePicture(item.property("IconPixmap").value<QDBusArgument>());
}

}  // namespace zephlin::contract
