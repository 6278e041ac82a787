#include "Tests/VM/VirtualMachine.h"

#include <nlohmann/json.hpp>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/socket.h>

#include <array>
#include <csignal>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <thread>

#include "KeyboardService/Protocol/Transport.h"

namespace zephlin {
namespace {

using namespace std::chrono_literals;
using nlohmann::json;

/// Enough even on a busy host.
constexpr std::chrono::milliseconds timeout = 10min;
/// Many commands take longer, which does no harm.
constexpr std::chrono::milliseconds timeUntilNudge = 10s;
constexpr auto timeBetweenTries = 50ms;

FileDescriptor connectTo(const std::string& path) {
  const SocketAddress address(path);
  const auto deadline = std::chrono::steady_clock::now() + 1min;
  while (std::chrono::steady_clock::now() < deadline) {
    FileDescriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    if (::connect(socket.get(), address.get(), address.size()) == 0) {
      return socket;
    }
    std::this_thread::sleep_for(timeBetweenTries);
  }
  throw std::runtime_error("the virtual machine does not start; is qemu-system-x86 installed?");
}

}  // namespace

LineStream::LineStream(const std::string& path) : socket_(connectTo(path)) {}

void LineStream::send(const std::string& line) {
  const std::string bytes = line + '\n';
  if (::send(socket_.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL) !=
      static_cast<ssize_t>(bytes.size())) {
    throw std::runtime_error("the virtual machine takes no more");
  }
}

std::string LineStream::receive() {
  if (auto line = receiveWithin(timeout)) {
    return *line;
  }
  throw std::runtime_error("the virtual machine says no more: " + buffer_);
}

std::optional<std::string> LineStream::receiveWithin(std::chrono::milliseconds silence) {
  while (buffer_.find('\n') == std::string::npos) {
    pollfd polled{socket_.get(), POLLIN, 0};
    if (::poll(&polled, 1, static_cast<int>(silence.count())) <= 0) {
      return std::nullopt;
    }
    std::array<char, 4096> chunk{};
    const ssize_t count = ::recv(socket_.get(), chunk.data(), chunk.size(), 0);
    if (count <= 0) {
      throw std::runtime_error("the virtual machine has ended: " + buffer_);
    }
    buffer_.append(chunk.data(), static_cast<std::size_t>(count));
  }
  const auto end = buffer_.find('\n');
  std::string line = buffer_.substr(0, end);
  buffer_.erase(0, end + 1);
  if (!line.empty() && line.back() == '\r') {
    line.pop_back();
  }
  return line;
}

/// clang-format would put each word on a line of its own.
// clang-format off
std::vector<std::string> VirtualMachine::command(const std::string& images,
                                                 const VirtualHardware& hardware) const {
  std::vector<std::string> command{
          "/usr/bin/qemu-system-x86_64",
          "-machine", hardware.hasPs2Keyboard ? "pc" : "pc,i8042=off", "-m", "512",
          "-smp", std::to_string(hardware.processors),
          "-nodefaults", "-no-user-config", "-no-reboot", "-display", "none",
          "-kernel", images + "/kernel", "-initrd", images + "/initramfs",
          "-append", "console=ttyS0 quiet panic=-1 no_console_suspend mem_sleep_default=deep "
                     // Else the clock of several emulated processors is a slow chip's.
                     "tsc=reliable "
                     // The kernel need not test its ciphers, half of the time that it takes to boot.
                     "cryptomgr.notests",
          "-serial", "file:" + directory_.file("console"),
          "-serial", "unix:" + directory_.file("shell") + ",server=on,wait=on",
          "-qmp", "unix:" + directory_.file("control") + ",server=on,wait=off",
          // QEMU fills the last free port with a hub.
          "-device", "qemu-xhci,id=usb,p2=" + std::to_string(places + 1)};
  for (int place = 0; place < places; ++place) {
    command.insert(command.end(), {"-device", "bochs-display,id=video" + std::to_string(place)});
  }
  if (hardware.processors == 1) {
    // The machine's clock counts its instructions, so it does not run on while the host is busy.
    command.insert(command.end(), {"-accel", "tcg,thread=single", "-icount",
                                   "shift=" + std::to_string(hardware.instructionShift) +
                                   (hardware.skipsIdleTime ? ",sleep=off" : "")});
  } else {
    command.insert(command.end(), {"-accel", "tcg,thread=multi"});
  }
  return command;
}
// clang-format on

VirtualMachine::VirtualMachine(const std::string& images, const VirtualHardware& hardware)
    // It ends with this process, also on a crash.
    : process_(command(images, hardware), [] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); }),
      shell_(directory_.file("shell")),
      control_(directory_.file("control")) {
  control("qmp_capabilities");
  try {
    while (shell_.receive() != "@@ready") {
    }
  } catch (const std::runtime_error& error) {
    std::ostringstream message;
    message << error.what() << '\n' << std::ifstream(directory_.file("console")).rdbuf();
    throw std::runtime_error(message.str());
  }
}

VirtualMachine::Outcome VirtualMachine::run(const std::string& command) {
  shell_.send(command);
  return receiveOutcome();
}

VirtualMachine::Outcome VirtualMachine::receiveOutcome() {
  Outcome outcome;
  for (;;) {
    const std::string line = shellLine();
    if (line.starts_with("@@")) {
      outcome.status = std::stoi(line.substr(2));
      return outcome;
    }
    outcome.output += line + '\n';
  }
}

std::string VirtualMachine::shellLine() {
  for (auto silence = 0ms; silence < timeout; silence += timeUntilNudge) {
    if (auto line = shell_.receiveWithin(timeUntilNudge)) {
      return *line;
    }
    // The emulated serial port loses an interrupt now and then, and what was sent waits for the
    // next one. The shell skips an empty line.
    shell_.send("");
  }
  throw std::runtime_error("the virtual machine's shell says no more");
}

std::string VirtualMachine::output(const std::string& command) {
  const Outcome outcome = run(command);
  if (outcome.status != 0) {
    throw std::runtime_error(command + ": status " + std::to_string(outcome.status) + "\n" +
                             outcome.output);
  }
  return outcome.output;
}

void VirtualMachine::waitUntil(const std::string& condition) {
  const Outcome outcome = run("for try in $(seq 300); do if " + condition +
                              "; then break; fi; sleep 0.1; done; " + condition);
  if (outcome.status != 0) {
    throw std::runtime_error("it does not come true in the virtual machine: " + condition);
  }
}

std::string VirtualMachine::keyboardIsThere(int keyboard) {
  return "cat /sys/class/input/event*/device/uniq 2>/dev/null | grep -q -x K" +
         std::to_string(keyboard);
}

void VirtualMachine::plug(const std::vector<int>& keyboards) {
  for (const int keyboard : keyboards) {
    const std::string number = std::to_string(keyboard);
    control("device_add", {{"driver", "usb-kbd"},
                           {"id", "keyboard" + number},
                           {"bus", "usb.0"},
                           {"serial", "K" + number},
                           {"display", "video" + number}});
  }
  for (const int keyboard : keyboards) {
    waitUntil(keyboardIsThere(keyboard));
  }
  output("udevadm settle");
}

void VirtualMachine::pull(const std::vector<int>& keyboards) {
  for (const int keyboard : keyboards) {
    control("device_del", {{"id", "keyboard" + std::to_string(keyboard)}});
  }
  for (const int keyboard : keyboards) {
    waitUntil("! { " + keyboardIsThere(keyboard) + "; }");
  }
}

void VirtualMachine::turn(int keyboard, const std::string& key, bool isDown) {
  json arguments = {
      {"events",
       {{{"type", "key"},
         {"data", {{"down", isDown}, {"key", {{"type", "qcode"}, {"data", key}}}}}}}}};
  // The PS/2 keyboard alone belongs to no display, and gets what is sent to none.
  if (keyboard != ps2Keyboard) {
    arguments["device"] = "video" + std::to_string(keyboard);
  }
  control("input-send-event", arguments);
  if (keyboard == ps2Keyboard) {
    // As the wire does, which needs a millisecond for a byte.
    output("usleep 2000");
  }
}

void VirtualMachine::suspendAndWake() {
  shell_.send("echo mem >/sys/power/state");
  while (json::parse(control_.receive()).value("event", "") != "SUSPEND") {
  }
  control("system_wakeup");
  if (receiveOutcome().status != 0) {
    throw std::runtime_error("the virtual machine does not suspend");
  }
}

void VirtualMachine::control(const std::string& command, const json& arguments) {
  control_.send(json{{"execute", command}, {"arguments", arguments}}.dump());
  for (;;) {
    const json answer = json::parse(control_.receive());
    if (answer.contains("error")) {
      throw std::runtime_error(command + ": " + answer.dump());
    }
    if (answer.contains("return")) {
      return;
    }
  }
}

}  // namespace zephlin
