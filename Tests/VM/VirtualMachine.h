#pragma once

#include <nlohmann/json.hpp>

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "Base/FileDescriptor.h"
#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Support/TestProcess.h"

namespace zephlin {

/// A stream over a Unix socket, line by line. Throws std::runtime_error if it ends.
class LineStream {
 public:
  explicit LineStream(const std::string& path);

  void send(const std::string& line);
  /// Throws std::runtime_error after ten minutes of silence.
  std::string receive();
  /// Absent after so much silence.
  std::optional<std::string> receiveWithin(std::chrono::milliseconds silence);

 private:
  FileDescriptor socket_;
  std::string buffer_;
};

struct VirtualHardware {
  int processors = 1;
  /// The machine has a PS/2 keyboard from its start.
  bool hasPs2Keyboard = false;
  /// With one processor, an instruction takes 2 to the power of this nanoseconds.
  int instructionShift = 3;
  /// While the machine is idle its clock jumps to whatever comes next, so that nothing in it
  /// depends on the host's clock.
  bool skipsIdleTime = false;
};

/// A virtual machine with USB keyboards that are plugged and typed on from outside, and a shell.
/// Everything that fails throws std::runtime_error.
class VirtualMachine {
 public:
  struct Outcome {
    int status = 0;
    std::string output;
  };

  /// `images` has what buildImage.sh has made. Returns when the machine has booted.
  explicit VirtualMachine(const std::string& images, const VirtualHardware& hardware = {});

  /// Runs a command line in the machine's shell.
  Outcome run(const std::string& command);

  /// The output of a command line that succeeds.
  std::string output(const std::string& command);

  /// Waits until a command line succeeds, half a minute or so.
  void waitUntil(const std::string& condition);

  /// How many USB keyboards have places, numbered from 0.
  static constexpr int places = 4;

  /// The number of the PS/2 keyboard, which is never plugged or pulled.
  static constexpr int ps2Keyboard = -1;

  /// Plugs keyboards into their places and waits until the kernel has them.
  void plug(const std::vector<int>& keyboards);

  /// Pulls them and waits until the kernel has noticed.
  void pull(const std::vector<int>& keyboards);

  /// Presses or releases a key, by QEMU's name for it.
  void press(int keyboard, const std::string& key) { turn(keyboard, key, true); }
  void release(int keyboard, const std::string& key) { turn(keyboard, key, false); }

  /// Suspends the machine to memory and wakes it again.
  void suspendAndWake();

 private:
  void turn(int keyboard, const std::string& key, bool isDown);
  void control(const std::string& command,
               const nlohmann::json& arguments = nlohmann::json::object());
  [[nodiscard]] std::vector<std::string> command(const std::string& images,
                                                 const VirtualHardware& hardware) const;
  Outcome receiveOutcome();
  std::string shellLine();
  static std::string keyboardIsThere(int keyboard);

  test::TemporaryDirectory directory_;
  test::TestProcess process_;
  LineStream shell_;
  LineStream control_;
};

}  // namespace zephlin
