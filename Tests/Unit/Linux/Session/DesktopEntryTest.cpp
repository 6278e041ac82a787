#include <gtest/gtest.h>

#include "Platform/Linux/Session/DesktopEntry.h"

namespace zephlin {
namespace {

TEST(DesktopEntryTest, OnlyItsOwnGroupCounts) {
  const DesktopEntry entry(
      "Name=before\n[Other]\nName=other\n[Desktop Entry]\n#Name=comment\n"
      "Name[de]=deutsch\nName = mine \r\nName=twice\n[Next]\nExec=next\n");
  EXPECT_EQ(entry.value("Name"), "mine");
  EXPECT_EQ(entry.value("Exec"), std::nullopt);
}

TEST(DesktopEntryTest, WhatIsSetIsReplacedOrAddedAtTheGroupsEndAndAllElseStays) {
  DesktopEntry entry(
      "# mine\n\n[Desktop Entry]\nName=old\nX-Foreign=kept\n\n[Other]\nName=other\n");
  entry.setValue("Name", "new");
  entry.setValue("Exec", "run");
  entry.remove("X-Absent");
  EXPECT_EQ(
      entry.text(),
      "# mine\n\n[Desktop Entry]\nName=new\nX-Foreign=kept\nExec=run\n\n[Other]\nName=other\n");
}

TEST(DesktopEntryTest, AnEmptyTextGetsItsGroup) {
  DesktopEntry entry("");
  entry.setValue("Name", "new");
  entry.setValue("Gone", "soon");
  entry.remove("Gone");
  EXPECT_EQ(entry.text(), "[Desktop Entry]\nName=new\n");
}

TEST(DesktopEntryTest, AListEndsWithASemicolonOrWithout) {
  const DesktopEntry entry("[Desktop Entry]\nOnlyShowIn=KDE;XFCE;\nNotShowIn=GNOME\n");
  EXPECT_EQ(entry.list("OnlyShowIn"), (std::vector<std::string>{"KDE", "XFCE"}));
  EXPECT_EQ(entry.list("NotShowIn"), std::vector<std::string>{"GNOME"});
  EXPECT_TRUE(entry.list("Absent").empty());
}

TEST(DesktopEntryTest, AProgramsPathIsQuotedByTheRulesOfTheFormat) {
  EXPECT_EQ(execValue("/usr/bin/Zephlin"), "\"/usr/bin/Zephlin\"");
  EXPECT_EQ(execValue("/My Apps/100%/Zephlin"), "\"/My Apps/100%%/Zephlin\"");
  EXPECT_EQ(execValue(R"(/a"b$c`d\e)"), R"("/a\\"b\\$c\\`d\\\\e")");
  EXPECT_EQ(execValue("/a\nb"), R"("/a\nb")");
}

}  // namespace
}  // namespace zephlin
