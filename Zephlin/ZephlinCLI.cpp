#include "Zephlin/ZephlinCLI.h"

#include <cstdio>
#include <string_view>
#include <vector>

#include "Platform/Workspace.h"
#include "ZephlinCore/CapsLockEngine.h"

namespace zephlin::ZephlinCLI {

namespace {

using Status = CapsLockEngine::Status;

constexpr std::int32_t exitSuccess = 0;
constexpr std::int32_t exitFailure = 1;
constexpr std::int32_t exitUnknownCommand = 2;

constexpr std::string_view bundleIdentifier = "com.quorvenel.zephlin";

void printLine(const std::string& line) {
  std::fwrite(line.data(), 1, line.size(), stdout);
  std::fputc('\n', stdout);
}

/// Standard error is unbuffered, so the text is one write.
void printError(const std::string& text) {
  std::fwrite(text.data(), 1, text.size(), stderr);
}

std::int32_t fail(const char* command, const std::exception& error) {
  printError(std::string(command) + " failed: " + localizedDescription(error) + "\n");
  return exitFailure;
}

const std::string& appleDefaultDelay() {
  static const std::string text = std::to_string(CapsLockEngine::appleDefaultDelayMS);
  return text;
}

std::string instantOfTotal(const Status& status) {
  return std::to_string(status.instantServices) + " of " + std::to_string(status.totalServices());
}

void printUsage() {
  printLine(
      "Zephlin — instant Caps Lock for macOS\n"
      "\n"
      "usage: Zephlin [command]\n"
      "\n"
      "Run with no command to start the menu bar app.\n"
      "\n"
      "commands:\n"
      "  apply     set CapsLockDelayOverride=0 on all keyboards\n"
      "  restore   restore Apple's default (" +
      appleDefaultDelay() +
      " ms) behavior\n"
      "  status    show the current override state\n"
      "  help      show this help");
}

void warnIfMenuBarAppRunning(std::string_view command) {
  const std::vector<RunningApplication> applications =
      runningApplicationsWithBundleIdentifier(bundleIdentifier);
  if (applications.empty() ||
      applications.front().processIdentifier == currentProcessIdentifier()) {
    return;
  }
  std::string note = "note: the Zephlin menu bar app is running and will re-assert its own setting";
  if (command == "restore") {
    note += " and undo this restore";
  }
  printLine(note + ". Prefer the ⇪ menu toggle while it runs.");
}

std::string applyReport(const Status& status) {
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

std::int32_t apply(const CapsLockEngine& engine) try {
  engine.applyInstant();
  const Status status = engine.status();
  printLine(applyReport(status));
  warnIfMenuBarAppRunning("apply");
  return status.instantServices < 1 ? exitFailure : exitSuccess;
} catch (const std::exception& error) {
  return fail("apply", error);
}

std::int32_t restore(const CapsLockEngine& engine) try {
  engine.restoreDefault();
  printLine("Restored Apple default Caps Lock behavior (" + appleDefaultDelay() +
            " ms delay). A reboot resets the override entirely.");
  warnIfMenuBarAppRunning("restore");
  return exitSuccess;
} catch (const std::exception& error) {
  return fail("restore", error);
}

std::int32_t status(const CapsLockEngine& engine) try {
  const Status status = engine.status();
  printLine("Keyboard HID services: " + std::to_string(status.totalServices()));
  printLine("  instant (0 ms):      " + std::to_string(status.instantServices));
  printLine("  Apple default:       " + std::to_string(status.defaultServices));
  printLine("  other delay values:  " + std::to_string(status.otherServices));
  printLine(verdict(status));
  return exitSuccess;
} catch (const std::exception& error) {
  return fail("status", error);
}

}  // namespace

const std::set<std::string>& knownCommands() {
  static const std::set<std::string> commands = {"apply", "restore", "status",
                                                 "help",  "--help",  "-h"};
  return commands;
}

std::int32_t run(const std::string& command) {
  const CapsLockEngine engine("/usr/bin/hidutil");
  if (command == "apply") {
    return apply(engine);
  }
  if (command == "restore") {
    return restore(engine);
  }
  if (command == "status") {
    return status(engine);
  }
  if (knownCommands().contains(command)) {
    printUsage();
    return exitSuccess;
  }
  printError("unknown command: " + command + "\n\n");
  printUsage();
  return exitUnknownCommand;
}

}  // namespace zephlin::ZephlinCLI
