#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "Tests/Desktop/Harness/Desktop.h"
#include "Tests/Support/TrayItem.h"

namespace zephlin::test {

/// How the application is started.
struct Launch {
  /// With the settings in it; an empty text for a new one.
  std::string home{};
  std::vector<std::string> command{"/usr/bin/Zephlin"};
  /// Over the session's.
  Environment environment{};
};

/// The application, running in the session. It is killed at the end.
class App {
 public:
  explicit App(Desktop& desktop, Launch launch = {});

  [[nodiscard]] const std::string& home() const { return home_; }
  [[nodiscard]] Program& program() { return program_; }
  [[nodiscard]] const Program& program() const { return program_; }

  /// The session's environment with this instance's home, for programs of the same user.
  [[nodiscard]] const Environment& environment() const { return environment_; }

  /// Its item and menu; waits until a host knows the item.
  TrayItem& item();
  /// Opens the menu and waits until its status line is this text.
  void waitForStatusLine(const std::string& text);
  void waitForToolTip(const std::string& text);
  /// Opens the menu, chooses "Quit Zephlin" and returns the exit status. It may end before it has
  /// answered the choice.
  int quit();

 private:
  Desktop& desktop_;
  std::string home_;
  Environment environment_;
  Program program_;
  std::unique_ptr<TrayItem> item_;
};

}  // namespace zephlin::test
