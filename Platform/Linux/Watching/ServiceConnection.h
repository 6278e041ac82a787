#pragma once

#include <QByteArray>
#include <QSocketNotifier>
#include <functional>
#include <string>
#include <vector>

#include "Base/FileDescriptor.h"
#include "Platform/Linux/Watching/EndableCallback.h"

namespace zephlin {

enum class ServiceNews {
  Subscribed,  ///< The service has agreed to tell of keyboards.
  Appeared,    ///< A keyboard has appeared.
  Ended,       ///< The service has gone or is not to be understood; nothing follows.
};

/// One subscription at the keyboard service's stream socket, in lines of JSON: we send
/// {"request":"subscribe"}; it answers {"subscribed":true}, and then sends
/// {"appeared":"<RegistryID>"} for each keyboard that appears. Anything else from it ends the
/// subscription. Main thread.
class ServiceConnection {
 public:
  /// Connects and asks, without waiting for the answer. Throws std::system_error when nobody
  /// listens at the path.
  ServiceConnection(const std::string& path, std::function<void(ServiceNews)> callback);

 private:
  void receive();
  std::vector<ServiceNews> takeNews();

  EndableCallback<ServiceNews> callback_;
  FileDescriptor socket_;
  QSocketNotifier notifier_;
  QByteArray received_;
  bool isSubscribed_ = false;
};

}  // namespace zephlin
