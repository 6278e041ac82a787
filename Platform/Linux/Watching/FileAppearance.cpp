#include "Platform/Linux/Watching/FileAppearance.h"

#include <sys/inotify.h>
#include <unistd.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <system_error>
#include <utility>

namespace zephlin {

namespace {

constexpr std::uint32_t entryMade = IN_CREATE | IN_MOVED_TO | IN_ATTRIB;
constexpr std::uint32_t folderGone = IN_DELETE_SELF | IN_MOVE_SELF;
constexpr std::size_t eventBytes = 16384;

}  // namespace

FileAppearance::FileAppearance(std::filesystem::path path, std::function<void()> callback)
    : path_(std::move(path)), callback_(std::move(callback)) {
  watchNearestFolder();
}

// From the root downwards, so that a folder that is made meanwhile is either found or reported.
void FileAppearance::watchNearestFolder() {
  notifier_.reset();
  inotify_ = FileDescriptor(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
  if (!inotify_.isOpen()) {
    return;
  }
  std::filesystem::path folder = path_.root_path();
  int watched = -1;
  for (const std::filesystem::path& step : path_.relative_path()) {
    const int watch =
        ::inotify_add_watch(inotify_.get(), folder.c_str(), entryMade | folderGone | IN_ONLYDIR);
    if (watch < 0) {
      break;
    }
    if (watched >= 0) {
      ::inotify_rm_watch(inotify_.get(), watched);
    }
    watched = watch;
    awaited_ = step;
    folder /= step;
  }
  notifier_ = std::make_unique<QSocketNotifier>(inotify_.get(), QSocketNotifier::Read);
  QObject::connect(notifier_.get(), &QSocketNotifier::activated, [this] { receive(); });
}

void FileAppearance::receive() {
  alignas(inotify_event) std::array<char, eventBytes> bytes{};
  const ssize_t count = ::read(inotify_.get(), bytes.data(), bytes.size());
  bool isConcerned = false;
  for (const char* at = bytes.data(); at < bytes.data() + count;) {
    const auto* event = reinterpret_cast<const inotify_event*>(at);
    isConcerned = isConcerned || concernsUs(*event);
    at += sizeof *event + event->len;
  }
  if (!isConcerned) {
    return;
  }
  watchNearestFolder();
  std::error_code ignored;
  if (std::filesystem::exists(path_, ignored)) {
    callback_.call();
  }
}

bool FileAppearance::concernsUs(const inotify_event& event) const {
  if ((event.mask & (folderGone | IN_Q_OVERFLOW)) != 0) {
    return true;
  }
  return (event.mask & entryMade) != 0 && event.len > 0 && awaited_ == event.name;
}

}  // namespace zephlin
