#pragma once

namespace zephlin {

/// Looks for newer versions, with a face of its own. Main thread.
class Updater {
 public:
  virtual ~Updater() = default;
  virtual void checkForUpdates() = 0;
};

}  // namespace zephlin
