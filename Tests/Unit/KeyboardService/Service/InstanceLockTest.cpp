#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <optional>

#include "KeyboardService/Service/ListeningSocket.h"
#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Support/TestProcess.h"
#include "Tests/Unit/KeyboardService/Support/ErrorText.h"

namespace zephlin {
namespace {

using std::filesystem::exists;

TEST(InstanceLock, KeepsASecondHolderOut) {
  const test::TemporaryDirectory directory;
  const InstanceLock held(directory.file("s"));
  EXPECT_EQ(requestErrorOf([&] { const InstanceLock second(directory.file("s")); }),
            "another instance is running on " + directory.file("s") + "; stop it first");
  EXPECT_TRUE(exists(directory.file("s.lock")));
}

TEST(InstanceLock, RemovesItsFileAndCanBeTakenAgain) {
  const test::TemporaryDirectory directory;
  std::optional<InstanceLock> lock(directory.file("s"));
  lock.reset();
  EXPECT_FALSE(exists(directory.file("s.lock")));
  EXPECT_NO_THROW(lock.emplace(directory.file("s")));
}

TEST(InstanceLock, AFileLeftByACrashDoesNotKeepAnyoneOut) {
  const test::TemporaryDirectory directory;
  std::ofstream(directory.file("s.lock")) << "left over";
  EXPECT_NO_THROW(const InstanceLock lock(directory.file("s")));
}

TEST(InstanceLock, APipeInPlaceOfItsFileIsNotTaken) {
  const test::TemporaryDirectory directory;
  const std::string path = directory.file("s.lock");
  ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
  EXPECT_EQ(requestErrorOf([&] { const InstanceLock lock(directory.file("s")); }),
            path + " is not a lock file; remove it, or choose another place with --socket");
  EXPECT_TRUE(std::filesystem::is_fifo(path));
}

TEST(InstanceLock, SaysWhyThereCanBeNoFile) {
  const test::TemporaryDirectory directory;
  EXPECT_EQ(requestErrorOf([&] { const InstanceLock lock(directory.file("absent/s")); }),
            "cannot open the lock file " + directory.file("absent/s.lock") +
                " (No such file or directory); run zephlin-hidd as root, or choose another place "
                "with --socket");
}

/// Takes and drops the lock many times; a counter in a file, which only the holder touches, shows
/// two holders at once as a lost step.
void countUnderLock(const std::string& socketPath, const std::string& counter, int times) {
  for (int done = 0; done < times;) {
    try {
      const InstanceLock lock(socketPath);
      int value = 0;
      std::ifstream(counter) >> value;
      std::ofstream(counter) << value + 1;
      ++done;
    } catch (const RequestError&) {
      continue;  // Somebody else holds it.
    }
  }
}

TEST(InstanceLock, HasOneHolderAtATimeHoweverOftenItIsTakenAndDropped) {
  constexpr int times = 300;
  const test::TemporaryDirectory directory;
  const std::string counter = directory.file("counter");
  const auto work = [&] { countUnderLock(directory.file("s"), counter, times); };
  test::TestProcess first(work);
  test::TestProcess second(work);
  test::TestProcess third(work);
  EXPECT_EQ(first.wait(), test::Outcome{});
  EXPECT_EQ(second.wait(), test::Outcome{});
  EXPECT_EQ(third.wait(), test::Outcome{});
  int value = 0;
  std::ifstream(counter) >> value;
  EXPECT_EQ(value, 3 * times);
}

}  // namespace
}  // namespace zephlin
