#include "Platform/Linux/Session/SessionEnd.h"

#include <fcntl.h>
#include <unistd.h>

#include <QGuiApplication>
#include <QSessionManager>
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
  // A full pipe already wakes the loop, so the handler need not wait.
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
  // Fails only if the pipe is full, and then the loop is about to wake up anyway.
  [[maybe_unused]] const ssize_t written = ::write(handlerPipe, &byte, 1);
  errno = error;
}

void QuitSignals::readSignals() const {
  std::array<char, 64> bytes;
  while (::read(pipe_.readEnd.get(), bytes.data(), bytes.size()) > 0) {
  }
}

void takeNoPartInSessions() {
  const auto decline = [](QSessionManager& manager) {
    manager.setRestartHint(QSessionManager::RestartNever);
  };
  QObject::connect(qGuiApp, &QGuiApplication::commitDataRequest, qGuiApp, decline,
                   Qt::DirectConnection);
  QObject::connect(qGuiApp, &QGuiApplication::saveStateRequest, qGuiApp, decline,
                   Qt::DirectConnection);
}

}  // namespace zephlin
