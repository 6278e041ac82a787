#include "Tests/Support/InNewProcess.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <exception>
#include <system_error>

#include "Base/FileDescriptor.h"

namespace zephlin::test {
namespace {

std::string resultOf(const std::function<std::string()>& work) {
  try {
    return work();
  } catch (const std::exception& error) {
    return std::string("exception: ") + error.what();
  }
}

}  // namespace

std::string inNewProcess(const std::function<std::string()>& work) {
  Pipe pipe = makePipe();
  // Far from the descriptors that `work` may close or count.
  FileDescriptor report(::fcntl(pipe.writeEnd.get(), F_DUPFD_CLOEXEC, 200));
  pipe.writeEnd.close();
  const pid_t child = ::fork();
  if (child == -1) {
    throw std::system_error(errno, std::generic_category(), "fork");
  }
  if (child == 0) {
    const FileDescriptor null(::open("/dev/null", O_RDONLY | O_CLOEXEC));
    ::dup2(null.get(), STDIN_FILENO);
    const std::string text = resultOf(work);
    ::_exit(::write(report.get(), text.data(), text.size()) == -1 ? 1 : 0);
  }
  report.close();
  std::string text;
  std::array<char, 4096> chunk;
  for (ssize_t count = 0; (count = ::read(pipe.readEnd.get(), chunk.data(), chunk.size())) > 0;) {
    text.append(chunk.data(), static_cast<std::size_t>(count));
  }
  ::waitpid(child, nullptr, 0);
  return text;
}

}  // namespace zephlin::test
