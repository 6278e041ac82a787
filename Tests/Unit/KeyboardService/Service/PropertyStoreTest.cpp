#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "KeyboardService/Service/PropertyStore.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace zephlin {
namespace {

namespace files = std::filesystem;

class PropertyStoreTest : public testing::Test {
 protected:
  PropertyStore open(const std::string& bootID = "one") {
    return PropertyStore(path, bootID, [this](const std::string& line) { log.push_back(line); });
  }

  void write(const std::string& text) const { std::ofstream(path) << text; }

  [[nodiscard]] std::string content() const {
    std::ostringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
  }

  /// A store that reads these bytes has nothing, and says in its log why.
  std::string complaintAbout(const std::string& text) {
    write(text);
    log.clear();
    EXPECT_EQ(open().take("/sys/a"), PropertySet{});
    EXPECT_EQ(log.size(), 1U) << text;
    return log.empty() ? "" : log.front();
  }

  const test::TemporaryDirectory directory;
  const std::string path = directory.file("state");
  const PropertyStore::Properties instant{{"/sys/a", {{"CapsLockDelayOverride", 0}, {"B", -5}}},
                                          {"/sys/b", {{"A", 7}}}};
  std::vector<std::string> log;
};

TEST_F(PropertyStoreTest, GivesTheNextRunWhatWasKeptOnce) {
  open().keep(instant);
  EXPECT_EQ(content(),
            R"({"bootID":"one","keyboards":{"/sys/a":{"B":-5,"CapsLockDelayOverride":0},)"
            R"("/sys/b":{"A":7}}})"
            "\n");
  PropertyStore next = open();
  EXPECT_EQ(next.take("/sys/b"), (PropertySet{{"A", 7}}));
  EXPECT_EQ(next.take("/sys/b"), PropertySet{});
  EXPECT_EQ(next.take("/sys/a"), instant.at("/sys/a"));
  EXPECT_EQ(next.take("/sys/c"), PropertySet{});
  EXPECT_TRUE(log.empty());
}

TEST_F(PropertyStoreTest, WithoutAFileThereIsNothing) {
  EXPECT_EQ(open().take("/sys/a"), PropertySet{});
  EXPECT_TRUE(log.empty());
  EXPECT_FALSE(files::exists(path));
}

TEST_F(PropertyStoreTest, IgnoresWhatAnotherStartOfTheMachineKept) {
  open("one").keep(instant);
  EXPECT_EQ(open("two").take("/sys/a"), PropertySet{});
  EXPECT_EQ(log, std::vector{"ignoring " + path + ": the machine was started again since"});
}

TEST_F(PropertyStoreTest, IgnoresAFileThatIsNotItsOwnMaking) {
  const std::string start = R"({"bootID":"one","keyboards":)";
  for (const std::string& text :
       {std::string(), std::string("{"), std::string("[]"), std::string("{}"),
        std::string(R"({"keyboards":{}})"), start + "[]}", start + R"({"/sys/a":{}}})",
        start + R"({"/sys/a":{"A":"5"}}})", start + R"({"/sys/a":{"A B":5}}})",
        start + R"({"/sys/a":{"CapsLockDelayOverride":60001}}})",
        std::string(R"({"bootID":1,"keyboards":{}})"), std::string(4096, '[')}) {
    EXPECT_TRUE(complaintAbout(text).starts_with("ignoring " + path + ": ")) << text;
  }
}

TEST_F(PropertyStoreTest, IgnoresWhatIsNoFileOfThisUser) {
  files::create_directory(path);
  open();
  files::remove(path);
  ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
  open();
  files::remove(path);
  files::create_symlink("/etc/passwd", path);
  open();
  EXPECT_EQ(log.size(), 3U);
  if (::geteuid() == 0) {
    files::remove(path);
    write(R"({"bootID":"one","keyboards":{}})");
    ASSERT_EQ(::chown(path.c_str(), 4242, 4242), 0);
    open();
    EXPECT_EQ(log.back(), "ignoring " + path + ": it is not a file of this user");
  }
}

TEST_F(PropertyStoreTest, ReplacesTheFileInOneStep) {
  write("precious");
  const std::ifstream former(path);
  open().keep(instant);
  std::ostringstream text;
  text << former.rdbuf();
  EXPECT_EQ(text.str(), "precious");
  EXPECT_EQ(files::status(path).permissions(),
            files::perms::owner_read | files::perms::owner_write);
  EXPECT_EQ(std::distance(files::directory_iterator(directory.path()), {}), 1);
}

TEST_F(PropertyStoreTest, WritesNothingThatTheFileHas) {
  open().keep(instant);
  const auto writtenTo = [this] { return files::last_write_time(path); };
  files::last_write_time(path, files::file_time_type::min() + std::chrono::hours(1));
  const auto before = writtenTo();
  PropertyStore next = open();
  next.keep(instant);
  EXPECT_EQ(writtenTo(), before);
  next.keep({{"/sys/a", {{"A", 1}}}});
  EXPECT_NE(writtenTo(), before);
}

TEST_F(PropertyStoreTest, ThereIsNoFileWithoutProperties) {
  PropertyStore store = open();
  store.keep(instant);
  store.keep({});
  EXPECT_FALSE(files::exists(path));
  store.keep({});
  EXPECT_TRUE(log.empty());
}

TEST_F(PropertyStoreTest, LogsOnceThatItCannotWriteAndTriesAgain) {
  files::create_directory(path);
  files::create_directory(path + "/full");
  PropertyStore store = open();
  log.clear();
  store.keep(instant);
  store.keep({{"/sys/a", {{"A", 1}}}});
  EXPECT_EQ(log, std::vector{"cannot keep properties in " + path +
                             " (Is a directory); they would be lost if the service were started "
                             "again"});
  files::remove_all(path);
  store.keep({{"/sys/a", {{"A", 1}}}});
  EXPECT_EQ(open().take("/sys/a"), (PropertySet{{"A", 1}}));
}

}  // namespace
}  // namespace zephlin
