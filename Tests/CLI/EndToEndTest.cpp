// Zephlin, hidutil and zephlin-hidd together, as installed: the built programs are in /usr/bin, and
// /run is empty.

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <fstream>

#include "Tests/Support/TestProcess.h"

namespace zephlin {
namespace {

using test::Outcome;

Outcome zephlin(const std::string& command) {
  return test::run({"/usr/bin/Zephlin", command});
}

Outcome hidutil(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), "/usr/bin/hidutil");
  return test::run(arguments);
}

std::string lastLineOf(const std::string& text) {
  const std::size_t end = text.empty() ? 0 : text.size() - 1;
  const std::size_t begin = text.rfind('\n', end == 0 ? 0 : end - 1);
  return text.substr(begin == std::string::npos ? 0 : begin + 1);
}

class KeyboardService {
 public:
  explicit KeyboardService(const std::string& keyboards = "3")
      : process_({"/usr/bin/zephlin-hidd", "--virtual-keyboards", keyboards}) {
    process_.waitForErrors("ready");
  }
  KeyboardService(const KeyboardService&) = delete;
  KeyboardService& operator=(const KeyboardService&) = delete;
  ~KeyboardService() {
    process_.send(SIGTERM);
    process_.wait();
  }

 private:
  test::TestProcess process_;
};

TEST(EndToEnd, ApplyMakesEveryKeyboardInstantAndRestoreTakesItBack) {
  const KeyboardService service;
  EXPECT_EQ(zephlin("status").output,
            "Keyboard HID services: 3\n"
            "  instant (0 ms):      0\n"
            "  Apple default:       3\n"
            "  other delay values:  0\n"
            "Zephlin override is NOT active.\n");

  const Outcome applied = zephlin("apply");
  EXPECT_EQ(applied.output,
            "Caps Lock delay override applied and verified (0 ms on 3 keyboard services).\n");
  EXPECT_EQ(applied.status, 0);
  EXPECT_EQ(lastLineOf(zephlin("status").output), "Zephlin override is ACTIVE on all keyboards.\n");

  EXPECT_EQ(zephlin("restore").status, 0);
  EXPECT_EQ(lastLineOf(zephlin("status").output), "Zephlin override is NOT active.\n");
}

TEST(EndToEnd, AKeyboardPluggedLaterIsInstantAfterTheNextApply) {
  const KeyboardService service;
  zephlin("apply");
  const std::string plugged = hidutil({"plug"}).output;
  EXPECT_EQ(lastLineOf(zephlin("status").output),
            "Zephlin override is PARTIALLY active (3 of 4 services).\n");
  EXPECT_EQ(zephlin("apply").output,
            "Caps Lock delay override applied and verified (0 ms on 4 keyboard services).\n");

  EXPECT_EQ(hidutil({"pull", plugged.substr(0, plugged.size() - 1)}).status, 0);
  EXPECT_EQ(lastLineOf(zephlin("status").output), "Zephlin override is ACTIVE on all keyboards.\n");
}

TEST(EndToEnd, AnotherDelayIsCountedSeparately) {
  const KeyboardService service;
  zephlin("apply");
  EXPECT_EQ(hidutil({"property", "--matching", R"({"Product":"Virtual Keyboard 2"})", "--set",
                     R"({"CapsLockDelayOverride":40})"})
                .status,
            0);
  EXPECT_EQ(zephlin("status").output,
            "Keyboard HID services: 3\n"
            "  instant (0 ms):      2\n"
            "  Apple default:       0\n"
            "  other delay values:  1\n"
            "Zephlin override is PARTIALLY active (2 of 3 services).\n");
}

TEST(EndToEnd, PropertiesAreGoneWhenTheServiceRestarts) {
  {
    const KeyboardService service;
    zephlin("apply");
  }
  const KeyboardService service;
  EXPECT_EQ(lastLineOf(zephlin("status").output), "Zephlin override is NOT active.\n");
}

TEST(EndToEnd, WithoutAServiceEveryCommandSaysWhatToDo) {
  for (const char* command : {"apply", "restore", "status"}) {
    const Outcome result = zephlin(command);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errors, std::string(command) + " failed: hidutil exited with status 1: " +
                                 hidutil({"list"}).errors + "\n");
    EXPECT_NE(result.errors.find("zephlin-hidd"), std::string::npos) << result.errors;
  }
}

/// Marks the machine as a container while it lives.
class Container {
 public:
  Container() {
    std::filesystem::create_directories("/run/systemd");
    std::ofstream(mark_) << "lxc\n";
  }
  Container(const Container&) = delete;
  Container& operator=(const Container&) = delete;
  ~Container() { std::filesystem::remove(mark_); }

  static constexpr const char* advice =
      "this is a container (lxc); run Zephlin on the machine itself, which has the keyboards";

 private:
  static constexpr const char* mark_ = "/run/systemd/container";
};

TEST(EndToEnd, InAContainerApplySaysSoWithAndWithoutAService) {
  const Container container;
  EXPECT_EQ(zephlin("apply"),
            (Outcome{1, "",
                     "apply failed: hidutil exited with status 1: hidutil: no keyboard service at "
                     "/run/zephlin/hidd.sock (No such file or directory); " +
                         std::string(Container::advice) +
                         ", or start \"zephlin-hidd\" here if this container has /dev/input\n\n"}));
  const KeyboardService service("0");
  EXPECT_EQ(
      zephlin("apply"),
      (Outcome{1, "Apply command succeeded, but no keyboard service confirmed the override.\n",
               "hidutil: no keyboard matches; " + std::string(Container::advice) + "\n"}));
}

}  // namespace
}  // namespace zephlin
