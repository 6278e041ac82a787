#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QVariant>
#include <string>
#include <vector>

namespace zephlin::test {

/// An entry of a menu as a panel reads it.
struct ShownEntry {
  int id = 0;
  QVariantMap properties;

  [[nodiscard]] std::string label() const {
    return properties.value("label").toString().toStdString();
  }
};

/// A picture as an item sends it: four bytes for each pixel, the first of them its opacity.
struct ShownPicture {
  int width = 0;
  int height = 0;
  QByteArray pixels;
};

/// What a panel sees of an item and its menu, over a connection of its own. A call handles the
/// events of the test's thread, where the item lives, until there is an answer.
class ShownItem final : public QObject {
  Q_OBJECT

 public:
  explicit ShownItem(const QString& service);
  ~ShownItem() override;

  [[nodiscard]] QVariant property(const char* name);
  [[nodiscard]] std::string text(const char* name) {
    return property(name).toString().toStdString();
  }
  /// The lines of the text that a panel shows over the item.
  [[nodiscard]] std::string toolTip();
  /// The pictures that the item sends, and how wide they are.
  [[nodiscard]] std::vector<ShownPicture> pictures();
  [[nodiscard]] std::vector<int> pictureWidths();

  [[nodiscard]] std::vector<ShownEntry> layout();
  void tellAboutToShow();
  void choose(const ShownEntry& entry);
  /// So many times in a row, without waiting for an answer.
  void chooseAtOnce(const ShownEntry& entry, int times);

  /// The names of the signals that the item and its menu have sent so far.
  [[nodiscard]] int signalsSent(const char* name) const;
  [[nodiscard]] const std::vector<QDBusMessage>& sent() const { return sent_; }

 private Q_SLOTS:
  void record(const QDBusMessage& message) { sent_.push_back(message); }

 private:
  QDBusMessage call(const char* path, const char* interface, const char* method,
                    const QVariantList& arguments);

  QDBusConnection bus_;
  QString service_;
  std::vector<QDBusMessage> sent_;
};

/// Whether a name is taken on the session bus.
bool isOnBus(const QString& service);

}  // namespace zephlin::test
