#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <functional>
#include <stdexcept>

#include "Platform/Linux/Session/AutostartLoginService.h"
#include "Tests/Support/Files.h"
#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Unit/Linux/Session/RecordingLog.h"

namespace zephlin {
namespace {

using test::contentOf;
using test::writeTo;

constexpr const char* entryText = R"([Desktop Entry]
Type=Application
Name=Zephlin
Comment=Instant Caps Lock
Exec="/opt/Zephlin.app/Zephlin"
Icon=com.quorvenel.zephlin
Terminal=false
StartupNotify=false
X-GNOME-Autostart-enabled=true
)";

std::string failureOf(const std::function<void()>& change) {
  try {
    change();
  } catch (const std::exception& error) {
    return error.what();
  }
  return "none";
}

class AutostartLoginServiceTest : public testing::Test {
 protected:
  AutostartLoginServiceTest() {
    ::setenv("XDG_CONFIG_HOME", directory_.file("home").c_str(), 1);
    ::setenv("XDG_CONFIG_DIRS", directory_.file("system").c_str(), 1);
    ::setenv("XDG_CURRENT_DESKTOP", "XFCE", 1);
  }

  test::TemporaryDirectory directory_;
  const std::string entry_ = directory_.file("home/autostart/com.quorvenel.zephlin.desktop");
  const std::string systemEntry_ =
      directory_.file("system/autostart/com.quorvenel.zephlin.desktop");
  test::RecordingLog log_;
  AutostartLoginService service_{"/opt/Zephlin.app/Zephlin", log_};
};

TEST_F(AutostartLoginServiceTest, WithoutAnEntryItIsNotRegistered) {
  EXPECT_EQ(service_.status(), LoginServiceStatus::NotRegistered);
  service_.unregisterMainApp();
  EXPECT_EQ(service_.status(), LoginServiceStatus::NotRegistered);
}

TEST_F(AutostartLoginServiceTest, RegisteringWritesTheEntryAndUnregisteringRemovesIt) {
  service_.registerMainApp();
  EXPECT_EQ(contentOf(entry_), entryText);
  EXPECT_EQ(service_.status(), LoginServiceStatus::Enabled);
  service_.unregisterMainApp();
  EXPECT_FALSE(std::filesystem::exists(entry_));
  EXPECT_EQ(service_.status(), LoginServiceStatus::NotRegistered);
}

TEST_F(AutostartLoginServiceTest, TheEntrySaysWhetherThisDesktopStartsIt) {
  constexpr auto enabled = LoginServiceStatus::Enabled;
  constexpr auto off = LoginServiceStatus::RequiresApproval;
  constexpr auto none = LoginServiceStatus::NotRegistered;
  const struct {
    const char* lines;
    const char* desktop;
    LoginServiceStatus status;
  } cases[] = {
      {"Exec=run\n", "XFCE", enabled},
      {"Exec=run\nHidden=false\nX-GNOME-Autostart-enabled=true\n", "XFCE", enabled},
      {"", "", none},
      {"Exec=\n", "", none},
      {"Hidden=true\n", "", off},
      {"Exec=run\nHidden=true\n", "XFCE", off},
      {"Exec=run\nX-GNOME-Autostart-enabled=false\n", "XFCE", off},
      // The desktop's names are looked up in their order.
      {"Exec=run\nOnlyShowIn=KDE;XFCE;\n", "XFCE", enabled},
      {"Exec=run\nOnlyShowIn=KDE;\n", "XFCE", off},
      {"Exec=run\nOnlyShowIn=KDE;\n", "", off},
      {"Exec=run\nNotShowIn=XFCE;\n", "XFCE", off},
      {"Exec=run\nNotShowIn=KDE;\n", "XFCE", enabled},
      {"Exec=run\nNotShowIn=GNOME;\n", "ubuntu:GNOME", off},
      {"Exec=run\nOnlyShowIn=ubuntu;\nNotShowIn=GNOME;\n", "ubuntu:GNOME", enabled},
      // A program to try must be there.
      {"Exec=run\nTryExec=/bin/sh\n", "XFCE", enabled},
      {"Exec=run\nTryExec=sh\n", "XFCE", enabled},
      {"Exec=run\nTryExec=/nonexistent/program\n", "XFCE", off},
  };
  for (const auto& [lines, desktop, status] : cases) {
    ::setenv("XDG_CURRENT_DESKTOP", desktop, 1);
    writeTo(entry_, std::string("[Desktop Entry]\n") + lines);
    EXPECT_EQ(service_.status(), status) << lines << desktop;
  }
}

TEST_F(AutostartLoginServiceTest, WhatTheUserSwitchedOffAwaitsApprovalAndIsNotSwitchedOn) {
  for (const std::string off : {"Hidden=true", "X-GNOME-Autostart-enabled=false", "OnlyShowIn=KDE;",
                                "TryExec=/nonexistent"}) {
    writeTo(entry_, "[Desktop Entry]\nExec=/old\n" + off + "\n");
    EXPECT_EQ(service_.status(), LoginServiceStatus::RequiresApproval) << off;
    service_.registerMainApp();
    EXPECT_EQ(service_.status(), LoginServiceStatus::RequiresApproval) << off;
    EXPECT_NE(contentOf(entry_).find("Exec=\"/opt/Zephlin.app/Zephlin\"\n"), std::string::npos);
  }
}

TEST_F(AutostartLoginServiceTest, WhatTheUserAddedIsKept) {
  writeTo(entry_, "[Desktop Entry]\nName[de]=Mein\nX-GNOME-Autostart-Delay=5\n# note\n");
  service_.registerMainApp();
  EXPECT_EQ(contentOf(entry_).find(
                "[Desktop Entry]\nName[de]=Mein\nX-GNOME-Autostart-Delay=5\n# note\nType="),
            0U);
}

TEST_F(AutostartLoginServiceTest, AnEmptyEntryIsRepaired) {
  writeTo(entry_, "");
  EXPECT_EQ(service_.status(), LoginServiceStatus::NotRegistered);
  service_.registerMainApp();
  EXPECT_EQ(contentOf(entry_), entryText);
}

TEST_F(AutostartLoginServiceTest, ASystemWideEntryIsHiddenAndShownAgain) {
  writeTo(systemEntry_, "[Desktop Entry]\nExec=/usr/bin/Zephlin\n");
  EXPECT_EQ(service_.status(), LoginServiceStatus::Enabled);
  service_.unregisterMainApp();
  EXPECT_NE(contentOf(entry_).find("\nHidden=true\n"), std::string::npos);
  EXPECT_EQ(service_.status(), LoginServiceStatus::NotRegistered);
  service_.registerMainApp();
  EXPECT_EQ(contentOf(entry_).find("Hidden"), std::string::npos);
  EXPECT_EQ(service_.status(), LoginServiceStatus::Enabled);
}

TEST_F(AutostartLoginServiceTest, ASystemWideEntryThatIsOffStartsNothing) {
  writeTo(systemEntry_, "[Desktop Entry]\nExec=/usr/bin/Zephlin\nHidden=true\n");
  EXPECT_EQ(service_.status(), LoginServiceStatus::NotRegistered);
  service_.registerMainApp();
  EXPECT_EQ(service_.status(), LoginServiceStatus::Enabled);
  service_.unregisterMainApp();
  EXPECT_FALSE(std::filesystem::exists(entry_));
}

TEST_F(AutostartLoginServiceTest, FailuresSayWhatCannotBeDoneWhereAndWhy) {
  const std::string folder = directory_.file("home/autostart");
  writeTo(folder, "a file where the folder should be");
  EXPECT_EQ(service_.status(), LoginServiceStatus::NotRegistered);
  EXPECT_EQ(failureOf([&] { service_.registerMainApp(); }),
            "cannot make the folder " + folder + ": File exists");
  std::filesystem::remove(folder);
  std::filesystem::create_directories(entry_);
  EXPECT_EQ(service_.status(), LoginServiceStatus::NotRegistered);
  EXPECT_EQ(failureOf([&] { service_.unregisterMainApp(); }),
            "cannot remove " + entry_ + ": Is a directory");
}

/// Has a folder of fake settings programs, each of which leaves its name behind.
class AutostartSettingsTest : public AutostartLoginServiceTest {
 protected:
  AutostartSettingsTest() { ::setenv("PATH", directory_.file("bin").c_str(), 1); }
  ~AutostartSettingsTest() override { ::setenv("PATH", path_.c_str(), 1); }

  void addProgram(const std::string& name) {
    const std::string program = directory_.file("bin/" + name);
    writeTo(program, "#!/bin/sh\necho " + name + " $* > " + directory_.file("opened.part") +
                         "\n/bin/mv " + directory_.file("opened.part") + " " +
                         directory_.file("opened") + "\n");
    std::filesystem::permissions(program, std::filesystem::perms(0755));
  }

  std::string opened() {
    for (int tries = 0; tries < 6000 && !std::filesystem::exists(directory_.file("opened"));
         ++tries) {
      ::usleep(10000);
    }
    return contentOf(directory_.file("opened"));
  }

 private:
  const std::string path_ = ::getenv("PATH");
};

TEST_F(AutostartSettingsTest, TheDesktopsOwnProgramIsOpened) {
  addProgram("xfce4-session-settings");
  addProgram("kcmshell5");
  service_.openSystemSettingsLoginItems();
  EXPECT_EQ(opened(), "xfce4-session-settings\n");
  EXPECT_TRUE(log_.entries.empty());
}

TEST_F(AutostartSettingsTest, OfSeveralTheFirstThatIsInstalledIsOpened) {
  ::setenv("XDG_CURRENT_DESKTOP", "ubuntu:KDE", 1);
  addProgram("systemsettings");
  addProgram("kcmshell5");
  service_.openSystemSettingsLoginItems();
  EXPECT_EQ(opened(), "kcmshell5 kcm_autostart\n");
}

TEST_F(AutostartSettingsTest, WithoutOneTheLogNamesTheEntry) {
  addProgram("kcmshell5");
  service_.openSystemSettingsLoginItems();
  ASSERT_EQ(log_.entries.size(), 1U);
  EXPECT_EQ(log_.entries.front().find("Zephlin: "), 0U);
  EXPECT_TRUE(log_.entries.front().ends_with(" " + entry_)) << log_.entries.front();
}

}  // namespace
}  // namespace zephlin
