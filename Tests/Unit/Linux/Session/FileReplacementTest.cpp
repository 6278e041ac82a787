#include <gtest/gtest.h>
#include <sys/stat.h>

#include <system_error>

#include "Platform/Linux/Session/FileReplacement.h"
#include "Tests/Support/Files.h"
#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Support/TestProcess.h"

namespace zephlin {
namespace {

using test::contentOf;
using test::namesIn;
using test::writeTo;

class FileReplacementTest : public testing::Test {
 protected:
  static unsigned permissions(const std::string& path) {
    struct stat status {};
    EXPECT_EQ(::stat(path.c_str(), &status), 0) << path;
    return status.st_mode & 0777U;
  }

  static std::string failure(const std::string& path) {
    try {
      FileReplacement(path).commit("new");
    } catch (const std::system_error& error) {
      return error.what();
    }
    return "none";
  }

  test::TemporaryDirectory directory_;
  const std::string path_ = directory_.file("settings");
};

TEST_F(FileReplacementTest, ANewFileIsTheUsersAloneAndSoIsItsFolder) {
  const std::string path = directory_.file("a/b/settings");
  FileReplacement(path).commit("new");
  EXPECT_EQ(contentOf(path), "new");
  EXPECT_EQ(permissions(path), 0600U);
  EXPECT_EQ(permissions(directory_.file("a")), 0700U);
  EXPECT_EQ(permissions(directory_.file("a/b")), 0700U);
}

TEST_F(FileReplacementTest, AFileThatWasThereKeepsItsPermissions) {
  writeTo(path_, "old");
  ::chmod(path_.c_str(), 0640);
  FileReplacement(path_).commit("new");
  EXPECT_EQ(contentOf(path_), "new");
  EXPECT_EQ(permissions(path_), 0640U);
}

TEST_F(FileReplacementTest, ReadersOfTheOldFileKeepItWhole) {
  writeTo(path_, "old");
  std::ifstream reader(path_);
  FileReplacement(path_).commit("new");
  std::string text;
  reader >> text;
  EXPECT_EQ(text, "old");
}

TEST_F(FileReplacementTest, WithoutACommitNothingHasHappened) {
  writeTo(path_, "old");
  EXPECT_EQ(FileReplacement(path_).currentContent(), "old");
  EXPECT_EQ(contentOf(path_), "old");
  EXPECT_EQ(namesIn(directory_.path()), std::set<std::string>{"settings"});
}

TEST_F(FileReplacementTest, NothingIsLeftBesideTheFile) {
  FileReplacement(path_).commit("new");
  EXPECT_EQ(namesIn(directory_.path()), std::set<std::string>{"settings"});
}

TEST_F(FileReplacementTest, WhatADeadWriterLeftIsTakenOver) {
  writeTo(directory_.file(".settings.new"), "much longer than what is written now");
  FileReplacement(path_).commit("new");
  EXPECT_EQ(contentOf(path_), "new");
  EXPECT_EQ(namesIn(directory_.path()), std::set<std::string>{"settings"});
}

TEST_F(FileReplacementTest, ALinkStaysAndItsTargetIsReplaced) {
  writeTo(directory_.file("dotfiles/target"), "old");
  std::filesystem::create_symlink("dotfiles/target", path_);
  FileReplacement(path_).commit("new");
  EXPECT_EQ(std::filesystem::read_symlink(path_), "dotfiles/target");
  EXPECT_EQ(contentOf(directory_.file("dotfiles/target")), "new");
}

TEST_F(FileReplacementTest, TheTargetOfALinkMayBeMissing) {
  std::filesystem::create_symlink(directory_.file("dotfiles/target"), path_);
  FileReplacement(path_).commit("new");
  EXPECT_TRUE(std::filesystem::is_symlink(path_));
  EXPECT_EQ(contentOf(directory_.file("dotfiles/target")), "new");
}

TEST_F(FileReplacementTest, LinksInACircleAreAnError) {
  std::filesystem::create_symlink("settings", path_);
  EXPECT_EQ(failure(path_).find("cannot follow "), 0U) << failure(path_);
}

TEST_F(FileReplacementTest, OnlyARegularFileIsReplaced) {
  std::filesystem::create_symlink("/dev/null", path_);
  EXPECT_EQ(failure(path_), "cannot replace /dev/null: Invalid argument");
  EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
  EXPECT_EQ(failure(directory_.path()),
            "cannot replace " + directory_.path().string() + ": Is a directory");
}

TEST_F(FileReplacementTest, AFolderThatCannotBeMadeIsNamed) {
  writeTo(directory_.file("file"), "");
  EXPECT_EQ(failure(directory_.file("file/folder/settings")),
            "cannot make the folder " + directory_.file("file") + ": File exists");
}

TEST_F(FileReplacementTest, OthersWaitAndThenReadWhatWasCommitted) {
  auto first = std::make_unique<FileReplacement>(path_);
  test::TestProcess other([this] {
    std::fputs("waits", stderr);
    FileReplacement second(path_);
    second.commit(second.currentContent().value_or("nothing") + " and second");
  });
  other.waitForErrors("waits");
  first->commit("first");
  first.reset();
  EXPECT_EQ(other.wait().status, 0);
  EXPECT_EQ(contentOf(path_), "first and second");
}

TEST_F(FileReplacementTest, AWriterThatNeverEndsIsNotWaitedForForever) {
  test::TestProcess other([this] {
    const FileReplacement held(path_);
    std::fputs("holds", stderr);
    for (;;) {
      ::pause();
    }
  });
  other.waitForErrors("holds");
  EXPECT_EQ(failure(path_), "cannot write " + path_ + ": Device or resource busy");
}

}  // namespace
}  // namespace zephlin
