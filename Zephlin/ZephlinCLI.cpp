#include "Zephlin/ZephlinCLI.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <string_view>
#include <system_error>
#include <vector>

#include "Platform/Workspace.h"
#include "ZephlinCore/CapsLockEngine.h"

namespace zephlin::ZephlinCLI {

namespace {

using Status = CapsLockEngine::Status;

constexpr std::int32_t exitSuccess = 0;
constexpr std::int32_t exitFailure = 1;
constexpr std::int32_t exitUnknownCommand = 2;

/// What a command prints once its work is done, and the exit status.
struct Report {
  std::string text;
  std::int32_t exitStatus = exitSuccess;
  /// Lines for standard error, after the text.
  std::string explanation = {};
};

struct Command {
  std::string word;
  /// Its line of the usage text; an alias has none.
  std::string help;
  /// Throws what the engine throws.
  Report (*function)(const CapsLockEngine& engine);
};

/// All of them, in the order of the usage text.
const std::array<Command, 6>& commands();

constexpr std::string_view bundleIdentifier = "com.quorvenel.zephlin";

/// Standard error is unbuffered, so the text is one write.
void printError(const std::string& text) {
  std::fwrite(text.data(), 1, text.size(), stderr);
}

/// Prints the text and returns the exit status: a report that is lost is a failure. A caller that
/// has closed standard output wants none.
std::int32_t printText(const Report& report) {
  const std::string text = report.text + "\n";
  const bool isWritten = std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
  if ((isWritten && std::fflush(stdout) == 0) || errno == EBADF) {
    return report.exitStatus;
  }
  printError("Zephlin: cannot write to standard output: " + std::generic_category().message(errno) +
             "\n");
  return report.exitStatus == exitSuccess ? exitFailure : report.exitStatus;
}

std::int32_t print(const Report& report) {
  const std::int32_t exitStatus = printText(report);
  if (!report.explanation.empty()) {
    printError(report.explanation);
  }
  return exitStatus;
}

const std::string& appleDefaultDelay() {
  static const std::string text = std::to_string(CapsLockEngine::appleDefaultDelayMS);
  return text;
}

std::string instantOfTotal(const Status& status) {
  return std::to_string(status.instantServices) + " of " + std::to_string(status.totalServices());
}

/// Empty unless the menu bar app runs as another process.
std::string noteIfMenuBarAppRunning(const char* whatElseItWillDo) {
  const std::vector<RunningApplication> applications =
      runningApplicationsWithBundleIdentifier(bundleIdentifier);
  if (applications.empty() ||
      applications.front().processIdentifier == currentProcessIdentifier()) {
    return "";
  }
  return std::string(
             "\nnote: the Zephlin menu bar app is running and will re-assert its own setting") +
         whatElseItWillDo + ". Prefer the ⇪ menu toggle while it runs.";
}

std::string applyOutcome(const Status& status) {
  if (status.instantServices < 1) {
    return "Apply command succeeded, but no keyboard service confirmed the override.";
  }
  if (status.isPartial()) {
    return "Applied, but only " + instantOfTotal(status) +
           " keyboard services confirmed the override. Re-run in a moment.";
  }
  return "Caps Lock delay override applied and verified (0 ms on " +
         std::to_string(status.instantServices) + " keyboard service" +
         (status.instantServices == 1 ? "" : "s") + ").";
}

std::string verdict(const Status& status) {
  if (status.instantServices < 1) {
    return "Zephlin override is NOT active.";
  }
  if (status.isPartial()) {
    return "Zephlin override is PARTIALLY active (" + instantOfTotal(status) + " services).";
  }
  return "Zephlin override is ACTIVE on all keyboards.";
}

/// The lines in which hidutil complains, among what it printed: why keyboards are not set. Apple's
/// prints none. Does without std::istringstream, whose static library would triple the program.
std::string complaintsIn(std::string_view printed) {
  std::string complaints;
  while (!printed.empty()) {
    const std::string_view line = printed.substr(0, printed.find('\n'));
    printed.remove_prefix(std::min(line.size() + 1, printed.size()));
    if (line.starts_with("hidutil: ")) {
      complaints.append(line).append("\n");
    }
  }
  return complaints;
}

Report apply(const CapsLockEngine& engine) {
  const std::string printed = engine.setOverride(CapsLockEngine::instantDelayMS);
  const Status status = engine.status();
  return {applyOutcome(status) + noteIfMenuBarAppRunning(""),
          status.instantServices < 1 ? exitFailure : exitSuccess,
          status.isInstant() ? "" : complaintsIn(printed)};
}

Report restore(const CapsLockEngine& engine) {
  engine.restoreDefault();
  return {"Restored Apple default Caps Lock behavior (" + appleDefaultDelay() +
          " ms delay). A reboot resets the override entirely." +
          noteIfMenuBarAppRunning(" and undo this restore")};
}

Report status(const CapsLockEngine& engine) {
  const Status status = engine.status();
  return {"Keyboard HID services: " + std::to_string(status.totalServices()) +
          "\n  instant (0 ms):      " + std::to_string(status.instantServices) +
          "\n  Apple default:       " + std::to_string(status.defaultServices) +
          "\n  other delay values:  " + std::to_string(status.otherServices) + "\n" +
          verdict(status)};
}

std::string usage() {
  constexpr std::size_t wordColumnWidth = 10;
  std::string text =
      "Zephlin — instant Caps Lock for macOS\n"
      "\n"
      "usage: Zephlin [command]\n"
      "\n"
      "Run with no command to start the menu bar app.\n"
      "\n"
      "commands:";
  for (const Command& command : commands()) {
    if (!command.help.empty()) {
      text += "\n  " + command.word;
      text.append(wordColumnWidth - command.word.size(), ' ');
      text += command.help;
    }
  }
  return text;
}

Report help(const CapsLockEngine& /*engine*/) {
  return {usage()};
}

const std::array<Command, 6>& commands() {
  static const std::array<Command, 6> table = {{
      {"apply", "set CapsLockDelayOverride=0 on all keyboards", apply},
      {"restore", "restore Apple's default (" + appleDefaultDelay() + " ms) behavior", restore},
      {"status", "show the current override state", status},
      {"help", "show this help", help},
      {"--help", "", help},
      {"-h", "", help},
  }};
  return table;
}

}  // namespace

const std::set<std::string>& knownCommands() {
  static const std::set<std::string> words = [] {
    std::set<std::string> all;
    for (const Command& command : commands()) {
      all.insert(command.word);
    }
    return all;
  }();
  return words;
}

std::int32_t run(const std::string& word) {
  const auto command = std::find_if(commands().begin(), commands().end(),
                                    [&](const Command& each) { return each.word == word; });
  if (command == commands().end()) {
    printError("unknown command: " + word + "\n\n");
    return print({usage(), exitUnknownCommand});
  }
  Report report;
  try {
    report = command->function(CapsLockEngine("/usr/bin/hidutil"));
  } catch (const std::exception& error) {
    printError(word + " failed: " + localizedDescription(error) + "\n");
    return exitFailure;
  }
  return print(report);
}

}  // namespace zephlin::ZephlinCLI
