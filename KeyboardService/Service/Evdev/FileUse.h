#pragma once

#include <functional>
#include <string>

#include "Base/FileDescriptor.h"
#include "KeyboardService/Service/EventLoop.h"

namespace zephlin {

/// Calls back when any process has opened a file or is about to have closed it. Does nothing where
/// inotify is used up: it may only make something happen sooner.
class FileUse {
 public:
  FileUse(EventLoop& loop, const std::string& path, std::function<void()> callback);

 private:
  FileDescriptor inotify_;
  EventSource watch_;
};

}  // namespace zephlin
