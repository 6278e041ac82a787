#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QVariantMap>
#include <string>
#include <vector>

namespace zephlin::test {

/// An entry of a menu as a host of the protocol com.canonical.dbusmenu sees it.
struct MenuEntry {
  int id = 0;
  std::string label;
  bool isSeparator = false;
  bool isEnabled = true;
  bool isVisible = true;
  bool hasCheckMark = false;  ///< Whether there is room for one; `isChecked` says if it is there.
  bool isChecked = false;
  std::string shortcut;  ///< As "Control+q".
};

/// A menu on the session bus, used as a host uses it. Calls throw std::runtime_error on failure.
class TrayMenu final : public QObject {
  Q_OBJECT

 public:
  TrayMenu(const QDBusConnection& bus, QString service, QString path);

  /// Announces that the menu is about to be shown, as hosts do before they show it.
  void aboutToShow() const;
  void opened() const;
  void closed() const;

  std::vector<MenuEntry> entries() const;
  /// Throws where there is none with this label.
  [[nodiscard]] MenuEntry entry(const std::string& label) const;
  [[nodiscard]] std::string statusLine() const;

  /// Opens the menu and chooses the entry, which closes the menu.
  void choose(const std::string& label) const;
  void click(int id) const;
  /// Without waiting for an answer.
  void clickAtOnce(int id) const;

  /// How often the menu has said, since this was made, that something of it has changed.
  [[nodiscard]] int announcedChanges() const { return announcedChanges_; }

 private:
  Q_SLOT void countChange() { ++announcedChanges_; }

  QVariantList call(const char* method, const QVariantList& arguments) const;
  void send(int id, const char* event) const;

  QDBusConnection bus_;
  QString service_;
  QString path_;
  int announcedChanges_ = 0;
};

}  // namespace zephlin::test
