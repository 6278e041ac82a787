#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <optional>

#include "KeyboardService/Service/Clients/ListeningSocket.h"
#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Support/TestProcess.h"
#include "Tests/Unit/KeyboardService/Support/ErrorText.h"

namespace zephlin {
namespace {

using std::filesystem::exists;

class InstanceLockTest : public testing::Test {
 protected:
  test::TemporaryDirectory directory;
  std::string socket = directory.file("s");
};

TEST_F(InstanceLockTest, KeepsASecondHolderOut) {
  const InstanceLock held(socket);
  EXPECT_EQ(requestErrorOf([&] { const InstanceLock second(socket); }),
            "another instance is running on " + socket + "; stop it first");
  EXPECT_TRUE(exists(directory.file("s.lock")));
}

TEST_F(InstanceLockTest, RemovesItsFileAndCanBeTakenAgain) {
  std::optional<InstanceLock> lock(socket);
  lock.reset();
  EXPECT_FALSE(exists(directory.file("s.lock")));
  EXPECT_NO_THROW(lock.emplace(socket));
}

TEST_F(InstanceLockTest, AFileLeftByACrashDoesNotKeepAnyoneOut) {
  std::ofstream(directory.file("s.lock")) << "left over";
  EXPECT_NO_THROW(const InstanceLock lock(socket));
}

TEST_F(InstanceLockTest, APipeInPlaceOfItsFileIsNotTaken) {
  const std::string path = directory.file("s.lock");
  ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
  EXPECT_EQ(requestErrorOf([&] { const InstanceLock lock(socket); }),
            path + " is not a lock file; remove it, or choose another place with --socket");
  EXPECT_TRUE(std::filesystem::is_fifo(path));
}

TEST_F(InstanceLockTest, SaysWhyThereCanBeNoFile) {
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

TEST_F(InstanceLockTest, HasOneHolderAtATimeHoweverOftenItIsTakenAndDropped) {
  constexpr int times = 300;
  const std::string counter = directory.file("counter");
  const auto work = [&] { countUnderLock(socket, counter, times); };
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
