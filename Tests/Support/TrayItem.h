#pragma once

#include <QObject>
#include <QVariant>
#include <string>
#include <vector>

#include "Tests/Support/BusConnection.h"

namespace zephlin::test {

/// An entry of a menu as a panel reads it (com.canonical.dbusmenu).
struct MenuEntry {
  int id = 0;
  QVariantMap properties;

  [[nodiscard]] std::string label() const;
  [[nodiscard]] bool isSeparator() const { return properties.value("type") == "separator"; }
  [[nodiscard]] bool isEnabled() const { return properties.value("enabled", true).toBool(); }
  [[nodiscard]] bool isVisible() const { return properties.value("visible", true).toBool(); }
  /// Whether there is room for a check mark.
  [[nodiscard]] bool isCheckable() const { return properties.value("toggle-type") == "checkmark"; }
  [[nodiscard]] bool isChecked() const { return properties.value("toggle-state") == 1; }
  /// As "Control+Q"; empty without one.
  [[nodiscard]] std::string shortcut() const;
};

/// A picture as an item sends it: four bytes for each pixel, the first of them its opacity.
struct TrayPicture {
  int width = 0;
  int height = 0;
  QByteArray pixels;
};

/// A status notifier item and its menu as a panel sees and uses them, over a connection of its own.
class TrayItem final : public QObject {
  Q_OBJECT

 public:
  explicit TrayItem(const QString& service, const QString& path = "/StatusNotifierItem",
                    const QString& busAddress = sessionBusAddress());

  [[nodiscard]] QVariant property(const char* name) const;
  [[nodiscard]] std::string text(const char* name) const;
  /// The lines of the text that a panel shows over the item.
  [[nodiscard]] std::string toolTip() const;
  /// The pictures that the item sends, and how wide they are.
  [[nodiscard]] std::vector<TrayPicture> pictures() const;
  [[nodiscard]] std::vector<int> pictureWidths() const;

  std::vector<MenuEntry> entries() const;
  /// Throws std::runtime_error if there is none with this label.
  [[nodiscard]] MenuEntry entry(const std::string& label) const;
  [[nodiscard]] std::string statusLine() const { return entries().at(1).label(); }

  /// What panels announce before they show the menu, while they do and afterwards.
  void aboutToShow() const;
  void opened() const { send(0, "opened"); }
  void closed() const { send(0, "closed"); }
  void click(int id) const { send(id, "clicked"); }
  /// So many times in a row, without waiting for a reply.
  void clickAtOnce(int id, int times = 1) const;
  /// Opens the menu and chooses the entry, which closes the menu.
  void choose(const std::string& label) const;

  /// The signals that the item and its menu have sent so far.
  [[nodiscard]] const std::vector<QDBusMessage>& sent() const { return sent_; }
  /// How many of them have this name.
  [[nodiscard]] int signalsSent(const char* name) const;

 private Q_SLOTS:
  void record(const QDBusMessage& message) { sent_.push_back(message); }

 private:
  [[nodiscard]] Method menuMethod(const char* name) const;
  void send(int id, const char* event) const;

  BusConnection bus_;
  QString service_;
  QString path_;
  mutable QString menuPath_;
  std::vector<QDBusMessage> sent_;
};

}  // namespace zephlin::test
