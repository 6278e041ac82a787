#pragma once

#include <memory>
#include <optional>
#include <string>

#include "Tests/Desktop/Harness/Fingers.h"
#include "Tests/Desktop/Harness/HidutilRuns.h"
#include "Tests/Desktop/Harness/Keyboards.h"
#include "Tests/Desktop/Harness/Panel.h"
#include "Tests/Desktop/Harness/Screen.h"
#include "Tests/Support/BusConnection.h"
#include "Tests/Support/Daemon.h"
#include "Tests/Support/FakeLogind.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace zephlin::test {

/// The session's own files: the panel's settings, and the application's icons as if they were
/// installed.
class SessionFolder : public TemporaryDirectory {
 public:
  SessionFolder();

  /// What XDG_DATA_DIRS is.
  [[nodiscard]] std::string dataFolders() const { return file("share") + ":/usr/share"; }
};

/// A user's session on a private machine: a screen, a window manager, both buses, a login manager,
/// keyboards and, unless it is stopped, a panel with a tray.
class Desktop {
 public:
  Desktop();

  /// The environment of the session's programs, for a user with this home folder.
  [[nodiscard]] Environment environment(const std::string& home) const;
  /// An empty folder, for a user who has no settings yet.
  std::string makeHome();
  [[nodiscard]] std::string logFile(const std::string& name) const;

  [[nodiscard]] const Screen& screen() const { return screen_; }
  [[nodiscard]] Fingers& fingers() { return fingers_; }
  [[nodiscard]] BusConnection& sessionBus() { return sessionConnection_; }
  [[nodiscard]] const std::string& sessionBusAddress() const { return sessionBus_.address(); }
  [[nodiscard]] FakeLogind& logind() { return logind_; }
  [[nodiscard]] Keyboards& keyboards() { return *keyboards_; }
  [[nodiscard]] HidutilRuns& hidutil() { return hidutil_; }

  void restartKeyboards();

  /// Starts it if it is not running.
  Panel& panel();
  /// Returns when the tray is gone.
  void stopPanel();
  /// The tray items that a panel knows; empty without one.
  [[nodiscard]] QStringList registeredItems() const;

  /// Waits until nothing moves and writes the screen to NAME.png among the build's screenshots.
  void photograph(const std::string& name) const;
  /// The same, without waiting.
  void photographNow(const std::string& name) const;

 private:
  [[nodiscard]] Environment sessionEnvironment() const;

  SessionFolder folder_;
  int homes_ = 0;
  MessageBus systemBus_;
  Screen screen_;
  MessageBus sessionBus_;
  BusConnection sessionConnection_;
  Program windowManager_;
  FakeLogind logind_;
  HidutilRuns hidutil_;
  std::unique_ptr<Keyboards> keyboards_;
  Fingers fingers_;
  std::unique_ptr<Panel> panel_;
};

}  // namespace zephlin::test
