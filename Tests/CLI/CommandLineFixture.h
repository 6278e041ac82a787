#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Support/TestProcess.h"

namespace zephlin {

/// Runs the built executable, with TestTool as /usr/bin/hidutil.
class CommandLineTest : public testing::Test {
 protected:
  CommandLineTest() {
    std::filesystem::create_directory(bin_);
    std::filesystem::create_directory(replies_);
    std::filesystem::copy_file(TEST_TOOL, bin_ / "hidutil");
    ::setenv("XDG_RUNTIME_DIR", directory_.path().c_str(), 1);
    let("replies " + replies_.string());
    replyToSet("what a successful set prints is not shown\n");
  }

  void replyToSet(const std::string& text, int status = 0) { write("set", text, status, "stdout"); }
  void replyToGet(const std::string& text, int status = 0, const char* stream = "stdout") {
    write("get", text, status, stream);
  }
  /// Replies with a listing of one keyboard for each value.
  void listKeyboards(const std::vector<std::string>& values) {
    std::string text = "RegistryID   Key                     Value\n";
    for (const std::string& value : values) {
      text += "10000046a    CapsLockDelayOverride   " + value + "\n";
    }
    replyToGet(text);
  }

  /// What hidutil does instead of replying.
  static void let(const std::string& instructions) {
    ::setenv("TEST_TOOL", instructions.c_str(), 1);
  }

  test::Outcome zephlin(const std::vector<std::string>& arguments) {
    std::vector<std::string> words = {WITH_PRIVATE_BIN, bin_.string(), program_.string()};
    words.insert(words.end(), arguments.begin(), arguments.end());
    test::TestProcess process(words, prepare_);
    test::Outcome outcome = process.wait();
    errorWrites_ = process.errorWrites();
    return outcome;
  }

  void expect(const std::vector<std::string>& arguments, int status, const std::string& output,
              const std::string& error) {
    const test::Outcome result = zephlin(arguments);
    EXPECT_EQ(result.status, status);
    EXPECT_EQ(result.output, output);
    EXPECT_EQ(result.errors, error);
    EXPECT_EQ(errorWrites_, error.empty() ? 0 : 1) << "an error is one write";
  }

  /// The argument vectors of hidutil's runs, one argument a line, an empty line after each run.
  std::string toolArguments() {
    std::ifstream file(replies_ / "arguments");
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
  }

  static std::string statusReport(const std::string& total, const std::string& instant,
                                  const std::string& usual, const std::string& other,
                                  const std::string& verdict) {
    return "Keyboard HID services: " + total + "\n  instant (0 ms):      " + instant +
           "\n  Apple default:       " + usual + "\n  other delay values:  " + other +
           "\nZephlin override is " + verdict + "\n";
  }

  static constexpr const char* usage_ =
      "Zephlin — instant Caps Lock for macOS\n"
      "\n"
      "usage: Zephlin [command]\n"
      "\n"
      "Run with no command to start the menu bar app.\n"
      "\n"
      "commands:\n"
      "  apply     set CapsLockDelayOverride=0 on all keyboards\n"
      "  restore   restore Apple's default (75 ms) behavior\n"
      "  status    show the current override state\n"
      "  help      show this help\n";

  const test::TemporaryDirectory directory_;
  const std::filesystem::path bin_ = directory_.path() / "bin";
  const std::filesystem::path replies_ = directory_.path() / "replies";
  std::filesystem::path program_ = ZEPHLIN;
  /// Runs in the new process just before it becomes Zephlin.
  std::function<void()> prepare_ = [] {};

 private:
  int errorWrites_ = 0;

  void write(const char* name, const std::string& text, int status, const char* stream) {
    std::ofstream(replies_ / name) << status << ' ' << stream << '\n' << text;
  }
};

}  // namespace zephlin
