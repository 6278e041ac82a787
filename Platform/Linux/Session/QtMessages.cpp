#include "Platform/Linux/Session/QtMessages.h"

#include <QString>
#include <cstdlib>
#include <exception>

namespace zephlin {

namespace {

SystemLog* currentLog = nullptr;

/// The last words of Qt's xcb and Wayland platforms before they end the process (Qt 6.4,
/// QXcbConnection::processXcbEvents, QWaylandDisplay::checkError).
bool tellsOfLostDisplay(const QString& message) {
  return message.startsWith("The X11 connection broke") ||
         message.startsWith("The Wayland connection broke");
}

}  // namespace

QtMessages::QtMessages(SystemLog& log) : previous_(nullptr) {
  currentLog = &log;
  previous_ = qInstallMessageHandler(handle);
}

QtMessages::~QtMessages() {
  qInstallMessageHandler(previous_);
}

void QtMessages::handle(QtMsgType type, const QMessageLogContext& /*context*/,
                        const QString& message) {
  if (type == QtDebugMsg || type == QtInfoMsg) {
    return;
  }
  currentLog->log("Zephlin: " + message.toStdString());
  if (tellsOfLostDisplay(message)) {
    // Without a display nothing can be shut down by asking it; the kernel gives the rest back.
    std::_Exit(EXIT_SUCCESS);
  }
}

}  // namespace zephlin
