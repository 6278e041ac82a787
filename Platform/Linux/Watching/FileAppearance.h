#pragma once

#include <QSocketNotifier>
#include <filesystem>
#include <functional>
#include <memory>

#include "Base/FileDescriptor.h"
#include "Platform/Linux/Watching/EndableCallback.h"

struct inotify_event;

namespace zephlin {

/// Calls back when a file may have been made at a path, or its mode changed, also where the folders
/// above it come and go (inotify(7)). Watches one folder at a time: the file's, or the nearest that
/// there is. Where inotify is used up nothing is ever reported. Main thread.
class FileAppearance {
 public:
  /// `path` is absolute.
  FileAppearance(std::filesystem::path path, std::function<void()> callback);

 private:
  void watchNearestFolder();
  void receive();
  [[nodiscard]] bool concernsUs(const inotify_event& event) const;

  std::filesystem::path path_;
  EndableCallback<> callback_;
  FileDescriptor inotify_;
  std::unique_ptr<QSocketNotifier> notifier_;
  /// The entry of the watched folder that leads to the file, or is it.
  std::filesystem::path awaited_;
};

}  // namespace zephlin
