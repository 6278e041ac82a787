#pragma once

#include <QtGlobal>

#include "Platform/SystemLog.h"

namespace zephlin {

/// Puts Qt's warnings into the system log while it lives, and makes the loss of the display, which
/// Qt answers by ending the process with a failure, an orderly end: that is how a session ends.
/// One at a time.
class QtMessages {
 public:
  explicit QtMessages(SystemLog& log);
  QtMessages(const QtMessages&) = delete;
  QtMessages& operator=(const QtMessages&) = delete;
  ~QtMessages();

 private:
  static void handle(QtMsgType type, const QMessageLogContext& context, const QString& message);

  QtMessageHandler previous_;
};

}  // namespace zephlin
