#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <fstream>

#include "Base/FileDescriptor.h"
#include "Platform/Workspace.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace zephlin {
namespace {

/// A process that holds the lock file, as a running instance does.
class Instance {
 public:
  explicit Instance(const std::string& path) {
    Pipe ready = makePipe();
    process_ = ::fork();
    if (process_ == 0) {
      struct flock lock {};
      lock.l_type = F_WRLCK;
      lock.l_whence = SEEK_SET;
      const int file = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
      if (::fcntl(file, F_SETLK, &lock) == -1 || ::write(ready.writeEnd.get(), "!", 1) != 1) {
        ::_exit(1);
      }
      for (;;) {
        ::pause();
      }
    }
    ready.writeEnd.close();
    char byte = 0;
    EXPECT_EQ(::read(ready.readEnd.get(), &byte, 1), 1) << "no lock on " << path;
  }
  Instance(const Instance&) = delete;
  Instance& operator=(const Instance&) = delete;
  ~Instance() {
    ::kill(process_, SIGKILL);
    ::waitpid(process_, nullptr, 0);
  }

  [[nodiscard]] int process() const { return process_; }

 private:
  pid_t process_ = -1;
};

class RunningApplicationsTest : public testing::Test {
 protected:
  RunningApplicationsTest() { ::setenv("XDG_RUNTIME_DIR", directory_.path().c_str(), 1); }

  static std::vector<RunningApplication> instances() {
    return runningApplicationsWithBundleIdentifier("com.quorvenel.zephlin");
  }

  test::TemporaryDirectory directory_;
  const std::string lockFile_ = directory_.path() / "com.quorvenel.zephlin.lock";
};

TEST_F(RunningApplicationsTest, WithoutALockFileThereIsNoInstance) {
  EXPECT_TRUE(instances().empty());
}

TEST_F(RunningApplicationsTest, TheHolderOfTheLockIsTheInstance) {
  const Instance instance(lockFile_);
  ASSERT_EQ(instances().size(), 1U);
  EXPECT_EQ(instances().front().processIdentifier, instance.process());
  EXPECT_NE(instances().front().processIdentifier, currentProcessIdentifier());
}

TEST_F(RunningApplicationsTest, AFileThatNobodyHoldsIsNoInstanceWhateverItSays) {
  std::ofstream(lockFile_) << ::getppid() << '\n';
  EXPECT_TRUE(instances().empty());
}

TEST_F(RunningApplicationsTest, AnInstanceThatWasKilledIsGone) {
  { const Instance instance(lockFile_); }
  EXPECT_TRUE(instances().empty());
}

TEST_F(RunningApplicationsTest, AnotherIdentifierHasAnotherLock) {
  const Instance instance(directory_.path() / "com.example.other.lock");
  EXPECT_TRUE(instances().empty());
}

TEST_F(RunningApplicationsTest, ARuntimeDirectoryThatIsNoAbsolutePathIsNotUsed) {
  const Instance instance(lockFile_);
  ASSERT_EQ(::chdir(directory_.path().c_str()), 0);
  ::setenv("XDG_RUNTIME_DIR", ".", 1);
  EXPECT_TRUE(instances().empty());
}

TEST_F(RunningApplicationsTest, AFolderOrAFifoInPlaceOfTheLockIsNoInstance) {
  ASSERT_EQ(::mkfifo(lockFile_.c_str(), 0600), 0);
  EXPECT_TRUE(instances().empty());
  std::filesystem::remove(lockFile_);
  std::filesystem::create_directory(lockFile_);
  EXPECT_TRUE(instances().empty());
}

}  // namespace
}  // namespace zephlin
