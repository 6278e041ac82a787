#pragma once

#include <functional>
#include <string>

#include "Base/FileDescriptor.h"
#include "KeyboardService/Service/EventLoop.h"

namespace zephlin {

/// Calls back when any process opens or closes a file, which may destroy this object. Does nothing
/// where inotify is used up: it may only make something happen sooner.
class FileUse {
 public:
  struct Seen {
    bool opened = false;
    bool closed = false;
  };

  FileUse(EventLoop& loop, const std::string& path, std::function<void(Seen)> callback);

 private:
  void receive();

  FileDescriptor inotify_;
  std::function<void(Seen)> callback_;
  EventSource watch_;
};

}  // namespace zephlin
