#include "KeyboardService/Service/Evdev/FileUse.h"

#include <sys/epoll.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <utility>

namespace zephlin {

FileUse::FileUse(EventLoop& loop, const std::string& path, std::function<void(Seen)> callback)
    : inotify_(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)), callback_(std::move(callback)) {
  if (inotify_.isOpen() &&
      ::inotify_add_watch(inotify_.get(), path.c_str(), IN_OPEN | IN_CLOSE) >= 0) {
    watch_ = loop.watch(inotify_.get(), EPOLLIN, [this](std::uint32_t) { receive(); });
  }
}

void FileUse::receive() {
  std::uint32_t seen = 0;
  alignas(inotify_event) std::array<char, 4096> buffer;
  const ssize_t size = ::read(inotify_.get(), buffer.data(), buffer.size());
  for (ssize_t next = 0; next < size;) {
    inotify_event event{};
    std::memcpy(&event, buffer.data() + next, sizeof event);
    seen |= event.mask;
    next += static_cast<ssize_t>(sizeof event + event.len);
  }
  const auto callback = callback_;  // A copy, as the call may destroy this object.
  callback({(seen & IN_OPEN) != 0, (seen & IN_CLOSE) != 0});
}

}  // namespace zephlin
