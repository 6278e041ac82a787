#pragma once

#include <memory>
#include <optional>
#include <string>

#include "Tests/Desktop/Harness/Fingers.h"
#include "Tests/Desktop/Harness/HidutilRuns.h"
#include "Tests/Desktop/Harness/Keyboards.h"
#include "Tests/Desktop/Harness/Panel.h"
#include "Tests/Desktop/Harness/Screen.h"
#include "Tests/Desktop/Harness/Shell.h"
#include "Tests/Support/BusConnection.h"
#include "Tests/Support/Daemon.h"
#include "Tests/Support/FakeLogind.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace zephlin::test {

/// The session's own files, and the application's icons as if they were installed.
class SessionFolder : public TemporaryDirectory {
 public:
  SessionFolder();

  /// What XDG_DATA_DIRS is.
  [[nodiscard]] std::string dataFolders() const { return file("share") + ":/usr/share"; }
};

/// A user's session on a private machine: a screen, both buses, a login manager, keyboards, a shell
/// and, unless it is stopped, its panel with a tray.
class Desktop {
 public:
  explicit Desktop(const MakeShell& makeShell);

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
  [[nodiscard]] Shell& shell() { return *shell_; }

  void restartKeyboards();

  /// Starts it if it is not running.
  Panel& panel();
  /// Returns when the tray is gone.
  void stopPanel();
  /// Logs out: the shell ends, and the screen goes. Nothing but the destructor may be called
  /// afterwards.
  void endSession();
  /// The tray items that a panel knows; empty without one.
  [[nodiscard]] QStringList registeredItems() const;

  /// Waits until nothing moves and writes the screen to NAME.png among the build's screenshots.
  void photograph(const std::string& name) const;
  /// The same, without waiting.
  void photographNow(const std::string& name) const;

 private:
  /// Without a display.
  [[nodiscard]] Environment bareEnvironment(const std::string& home) const;

  SessionFolder folder_;
  int homes_ = 0;
  MessageBus systemBus_;
  Screen screen_;
  MessageBus sessionBus_;
  BusConnection sessionConnection_;
  FakeLogind logind_;
  HidutilRuns hidutil_;
  std::unique_ptr<Keyboards> keyboards_;
  Fingers fingers_;
  std::unique_ptr<Shell> shell_;
  std::unique_ptr<Panel> panel_;
};

}  // namespace zephlin::test
