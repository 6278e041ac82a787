#include "Platform/Linux/Session/QuitSignals.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <utility>

namespace zephlin {

namespace {

std::atomic<int> handlerPipe = -1;
static_assert(std::atomic<int>::is_always_lock_free, "a signal handler uses it");

}  // namespace

QuitSignals::QuitSignals(std::function<void()> quit)
    : pipe_(makePipe()), notifier_(pipe_.readEnd.get(), QSocketNotifier::Read) {
  // A full pipe tells the loop all that it must know, so the handler need not wait.
  ::fcntl(pipe_.writeEnd.get(), F_SETFL, O_NONBLOCK);
  ::fcntl(pipe_.readEnd.get(), F_SETFL, O_NONBLOCK);
  QObject::connect(&notifier_, &QSocketNotifier::activated, &notifier_,
                   [this, quit = std::move(quit)] {
                     readSignals();
                     quit();
                   });
  handlerPipe = pipe_.writeEnd.get();
  for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
    struct sigaction action {};
    ::sigaction(signal, nullptr, &action);
    if (action.sa_handler == SIG_IGN) {
      continue;
    }
    previous_[signal] = action;
    action = {};
    action.sa_handler = handle;
    action.sa_flags = SA_RESTART;
    ::sigaction(signal, &action, nullptr);
  }
}

QuitSignals::~QuitSignals() {
  for (const auto& [signal, action] : previous_) {
    ::sigaction(signal, &action, nullptr);
  }
  handlerPipe = -1;
}

void QuitSignals::handle(int /*signal*/) {
  const int error = errno;
  const char byte = 0;
  // A full pipe holds what the loop must know already.
  [[maybe_unused]] const ssize_t written = ::write(handlerPipe, &byte, 1);
  errno = error;
}

void QuitSignals::readSignals() const {
  std::array<char, 64> bytes;
  while (::read(pipe_.readEnd.get(), bytes.data(), bytes.size()) > 0) {
  }
}

}  // namespace zephlin
