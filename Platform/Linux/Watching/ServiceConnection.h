#pragma once

#include <QSocketNotifier>
#include <functional>
#include <string>
#include <vector>

#include "Base/FileDescriptor.h"
#include "KeyboardService/Protocol/Transport.h"
#include "Platform/Linux/Watching/EndableCallback.h"

namespace zephlin {

enum class ServiceNews {
  Subscribed,  ///< The service has accepted the subscription.
  Appeared,    ///< A keyboard has appeared.
  Ended,       ///< The service has gone or cannot be understood; nothing follows.
};

/// One subscription at the keyboard service: a SubscribeRequest, its response, then a notice for
/// each keyboard that appears. Anything else from the service ends the subscription. Main thread.
class ServiceConnection {
 public:
  /// Connects and asks, without waiting for the answer. Throws std::system_error if nobody
  /// listens at the path, and RequestError if nobody can.
  ServiceConnection(const std::string& path, std::function<void(ServiceNews)> callback);

 private:
  void receive();
  std::vector<ServiceNews> takeNews();

  EndableCallback<ServiceNews> callback_;
  FileDescriptor socket_;
  QSocketNotifier notifier_;
  LineSplitter received_{maximumNoticeBytes};
  bool isSubscribed_ = false;
};

}  // namespace zephlin
