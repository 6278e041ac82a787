#include "KeyboardService/Service/Evdev/FileUse.h"

#include <sys/epoll.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <array>
#include <utility>

namespace zephlin {

FileUse::FileUse(EventLoop& loop, const std::string& path, std::function<void()> callback)
    : inotify_(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
  if (!inotify_.isOpen() ||
      ::inotify_add_watch(inotify_.get(), path.c_str(), IN_OPEN | IN_CLOSE) < 0) {
    return;
  }
  watch_ = loop.watch(inotify_.get(), EPOLLIN,
                      [descriptor = inotify_.get(), callback = std::move(callback)](std::uint32_t) {
                        std::array<char, 4096> discarded;
                        while (::read(descriptor, discarded.data(), discarded.size()) > 0) {
                        }
                        callback();
                      });
}

}  // namespace zephlin
