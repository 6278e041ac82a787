#include <gtest/gtest.h>

#include "Platform/Linux/Session/AutostartEntry.h"

namespace zephlin {
namespace {

AutostartState state(const std::string& lines, const std::string& desktop = "XFCE") {
  return autostartState(DesktopEntry("[Desktop Entry]\nExec=run\n" + lines), desktop);
}

TEST(AutostartEntryTest, AnEntryWithACommandIsEnabled) {
  EXPECT_EQ(state(""), AutostartState::Enabled);
  EXPECT_EQ(state("Hidden=false\nX-GNOME-Autostart-enabled=true\n"), AutostartState::Enabled);
}

TEST(AutostartEntryTest, WithoutACommandThereIsNothingToStart) {
  EXPECT_EQ(autostartState(DesktopEntry(""), ""), AutostartState::Invalid);
  EXPECT_EQ(autostartState(DesktopEntry("[Desktop Entry]\nExec=\n"), ""), AutostartState::Invalid);
}

TEST(AutostartEntryTest, AHiddenOneIsSwitchedOffWhateverElseItHolds) {
  EXPECT_EQ(state("Hidden=true\n"), AutostartState::SwitchedOff);
  EXPECT_EQ(autostartState(DesktopEntry("[Desktop Entry]\nHidden=true\n"), ""),
            AutostartState::SwitchedOff);
  EXPECT_EQ(state("X-GNOME-Autostart-enabled=false\n"), AutostartState::SwitchedOff);
}

TEST(AutostartEntryTest, TheDesktopsNamesAreAskedInTheirOrder) {
  EXPECT_EQ(state("OnlyShowIn=KDE;XFCE;\n"), AutostartState::Enabled);
  EXPECT_EQ(state("OnlyShowIn=KDE;\n"), AutostartState::SwitchedOff);
  EXPECT_EQ(state("OnlyShowIn=KDE;\n", ""), AutostartState::SwitchedOff);
  EXPECT_EQ(state("NotShowIn=XFCE;\n"), AutostartState::SwitchedOff);
  EXPECT_EQ(state("NotShowIn=KDE;\n"), AutostartState::Enabled);
  EXPECT_EQ(state("NotShowIn=GNOME;\n", "ubuntu:GNOME"), AutostartState::SwitchedOff);
  EXPECT_EQ(state("OnlyShowIn=ubuntu;\nNotShowIn=GNOME;\n", "ubuntu:GNOME"),
            AutostartState::Enabled);
}

TEST(AutostartEntryTest, AProgramToTryMustBeThere) {
  EXPECT_EQ(state("TryExec=/bin/sh\n"), AutostartState::Enabled);
  EXPECT_EQ(state("TryExec=sh\n"), AutostartState::Enabled);
  EXPECT_EQ(state("TryExec=/nonexistent/program\n"), AutostartState::SwitchedOff);
}

}  // namespace
}  // namespace zephlin
