// A child that does what its arguments say: TestTool MODE [ARGUMENT …]. Where it replaces a program
// whose arguments are given, the same words are in the environment variable TEST_TOOL:
//
//   exit STATUS [TEXT]         prints TEXT and exits
//   sleep MILLISECONDS STATUS [TEXT]  prints TEXT after that time and exits
//   merged                     prints three lines, the second of them to standard error
//   die-by SIGNAL [TEXT]       prints TEXT and sends itself SIGNAL
//   hang [TEXT]                prints TEXT, ignores every signal and never ends
//   stop                       stops itself with SIGSTOP
//   close-output MILLISECONDS  closes standard output and standard error, and exits after that time
//   flood [BYTES [TEXT]]       prints BYTES bytes, then TEXT, and exits; or prints forever
//   leave-grandchild STATUS    leaves a process behind that holds the pipe; prints its identifier
//   leave-grandchild hang      the same, and never ends
//   describe [STATUS]          prints what it has inherited, and exits
//   watch-parent               closes its output; fails if the thread that its parent then starts
//                              blocks fewer signals than it can
//   echo-arguments             prints its arguments, one a line
//   replies DIRECTORY          prints DIRECTORY/set or DIRECTORY/get, as the arguments ask, to the
//                              stream and with the status in its first line; keeps the arguments
//                              in DIRECTORY/arguments, one a line, runs divided by an empty one

#include <dirent.h>
#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

namespace {

using Words = std::vector<std::string>;

[[noreturn]] void hang() {
  for (;;) {
    ::pause();
  }
}

void print(const std::string& text) {
  std::fputs(text.c_str(), stdout);
  std::fflush(stdout);
}

void sleepFor(const std::string& milliseconds) {
  ::usleep(1000U * static_cast<useconds_t>(std::atoi(milliseconds.c_str())));
}

std::string word(const Words& words, std::size_t index) {
  return index < words.size() ? words[index] : std::string();
}

[[noreturn]] void flood(const std::string& bytes, const std::string& text) {
  const bool forever = bytes.empty();
  std::size_t left = forever ? 0 : std::strtoull(bytes.c_str(), nullptr, 10);
  const std::string block(1U << 20U, 'x');
  while (forever || left > 0) {
    const std::size_t wanted = forever ? block.size() : std::min(left, block.size());
    const ssize_t written = ::write(STDOUT_FILENO, block.data(), wanted);
    if (written == -1) {
      std::exit(1);
    }
    left -= forever ? 0 : static_cast<std::size_t>(written);
  }
  print(text);
  std::exit(0);
}

void leaveGrandchild() {
  const pid_t grandchild = ::fork();
  if (grandchild == 0) {
    hang();
  }
  print(std::to_string(grandchild) + "\n");
}

std::string openDescriptors() {
  std::vector<int> numbers;
  DIR* const directory = ::opendir("/dev/fd");
  while (const dirent* entry = ::readdir(directory)) {
    const int number = std::atoi(entry->d_name);
    if (entry->d_name[0] != '.' && number != dirfd(directory)) {
      numbers.push_back(number);
    }
  }
  ::closedir(directory);
  std::sort(numbers.begin(), numbers.end());
  std::string text;
  for (const int number : numbers) {
    text += " " + std::to_string(number);
  }
  return text;
}

void describeSignals() {
  sigset_t mask;
  ::sigprocmask(SIG_SETMASK, nullptr, &mask);
  std::string blocked = "blocked:";
  std::string ignored = "ignored:";
  for (int signal = 1; signal < NSIG; ++signal) {
    struct sigaction action {};
    ::sigaction(signal, nullptr, &action);
    blocked += sigismember(&mask, signal) == 1 ? " " + std::to_string(signal) : "";
    ignored += action.sa_handler == SIG_IGN ? " " + std::to_string(signal) : "";
  }
  print(blocked + "\n" + ignored + "\n");
}

void describe(const char* argument0) {
  print(std::string("argument 0: ") + argument0 + "\n");
  print("descriptors:" + openDescriptors() + "\n");
  describeSignals();
  char directory[4096];
  print(std::string("directory: ") + ::getcwd(directory, sizeof directory) + "\n");
  const char* const marker = std::getenv("TEST_MARKER");
  print(std::string("marker: ") + (marker == nullptr ? "" : marker) + "\n");
  print("input: " +
        std::string(std::istreambuf_iterator<char>(std::ifstream("/dev/stdin").rdbuf()), {}) +
        "\n");
}

void closeOutput() {
  ::close(STDOUT_FILENO);
  ::close(STDERR_FILENO);
}

/// Waits for the parent's second thread. Returns whether it blocks every signal except those that
/// cannot be blocked and those that the C library, or a sanitizer, keeps for itself.
bool parentBlocksSignals() {
  const std::filesystem::path tasks = "/proc/" + std::to_string(::getppid()) + "/task";
  const auto newestThread = [&tasks] {
    int newest = 0;
    for (const auto& task : std::filesystem::directory_iterator(tasks)) {
      newest = std::max(newest, std::stoi(task.path().filename()));
    }
    return newest;
  };
  while (newestThread() == ::getppid()) {
  }
  ::usleep(50000);  // A thread begins with every signal blocked.
  std::ifstream status(tasks / std::to_string(newestThread()) / "status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with("SigBlk:\tfffffffe")) {
      return true;
    }
  }
  return false;
}

int reply(const std::string& directory, const Words& arguments) {
  const bool sets = std::find(arguments.begin(), arguments.end(), "--set") != arguments.end();
  std::ofstream record(directory + "/arguments", std::ios::app);
  for (const std::string& argument : arguments) {
    record << argument << '\n';
  }
  record << '\n';
  std::ifstream file(directory + (sets ? "/set" : "/get"));
  int status = 0;
  std::string stream;
  file >> status >> stream;
  file.get();
  std::stringstream text;
  text << file.rdbuf();
  std::fputs(text.str().c_str(), stream == "stderr" ? stderr : stdout);
  return status;
}

Words instructions(const Words& arguments) {
  const char* const variable = std::getenv("TEST_TOOL");
  if (variable == nullptr) {
    return arguments;
  }
  std::istringstream text(variable);
  return {std::istream_iterator<std::string>(text), {}};
}

}  // namespace

int main(int argc, char* argv[]) {
  const Words arguments(argv + 1, argv + argc);
  const Words words = instructions(arguments);
  const std::string mode = word(words, 0);
  if (mode == "exit") {
    print(word(words, 2));
    return std::atoi(word(words, 1).c_str());
  }
  if (mode == "sleep") {
    sleepFor(word(words, 1));
    print(word(words, 3));
    return std::atoi(word(words, 2).c_str());
  }
  if (mode == "merged") {
    print("first\n");
    std::fputs("second\n", stderr);
    print("third\n");
    return 0;
  }
  if (mode == "die-by") {
    print(word(words, 2));
    const rlimit tooSmall{1, 1};
    ::setrlimit(RLIMIT_CORE, &tooSmall);  // No core file.
    ::kill(::getpid(), std::atoi(word(words, 1).c_str()));
    hang();
  }
  if (mode == "hang") {
    for (int signal = 1; signal < NSIG; ++signal) {
      ::signal(signal, SIG_IGN);
    }
    print(word(words, 1));
    hang();
  }
  if (mode == "stop") {
    ::raise(SIGSTOP);
    return 0;
  }
  if (mode == "close-output") {
    closeOutput();
    sleepFor(word(words, 1));
    return 0;
  }
  if (mode == "flood") {
    flood(word(words, 1), word(words, 2));
  }
  if (mode == "leave-grandchild") {
    leaveGrandchild();
    if (word(words, 1) == "hang") {
      hang();
    }
    return std::atoi(word(words, 1).c_str());
  }
  if (mode == "describe") {
    describe(argv[0]);
    return std::atoi(word(words, 1).c_str());
  }
  if (mode == "watch-parent") {
    closeOutput();
    return parentBlocksSignals() ? 0 : 1;
  }
  if (mode == "echo-arguments") {
    for (const std::string& argument : arguments) {
      print(argument + "\n");
    }
    return 0;
  }
  if (mode == "replies") {
    return reply(word(words, 1), arguments);
  }
  std::fprintf(stderr, "TestTool: unknown mode '%s'\n", mode.c_str());
  return 64;
}
