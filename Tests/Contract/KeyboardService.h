#pragma once

#include <QByteArray>
#include <QLocalServer>
#include <QLocalSocket>
#include <map>

namespace zephlin::contract {

/// A keyboard service with any number of subscribers, at the usual place: in a folder /run that
/// only this program has.
class KeyboardService {
 public:
  /// Throws std::runtime_error where the place is not to be had.
  KeyboardService();

  /// Tells all subscribers, of whom there is one at least, that a keyboard has appeared.
  void plugKeyboard();

 private:
  void accept();

  /// What each client has sent. The server owns the sockets.
  std::map<QLocalSocket*, QByteArray> clients_;
  // Destroyed first: its clients leave then.
  QLocalServer server_;
};

}  // namespace zephlin::contract
