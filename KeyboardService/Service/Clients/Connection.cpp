#include "KeyboardService/Service/Clients/Connection.h"

#include <sys/epoll.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>
#include <utility>

#include "KeyboardService/Protocol/Messages.h"
#include "KeyboardService/Protocol/Transport.h"
#include "KeyboardService/Service/Clients/Server.h"

namespace zephlin {
namespace {

using std::chrono::microseconds;
using std::chrono::steady_clock;

constexpr std::size_t bytesPerTurn = std::size_t{16} * 1024;

/// What a subscriber may leave unread besides what its socket holds.
constexpr std::size_t maximumUnreadBytes = std::size_t{16} * 1024;

std::string requestTooLong() {
  return encode(ErrorResponse{"the request is longer than " + std::to_string(maximumRequestBytes) +
                              " bytes; ask for less at once"});
}

std::string alreadySubscribed() {
  return encode(
      ErrorResponse{"a subscribed connection takes no more requests; open another connection"});
}

bool meansLater(int errorNumber) {
  return errorNumber == EAGAIN || errorNumber == EINTR;
}

}  // namespace

Connection::Connection(EventLoop& loop, Turns& turns, FileDescriptor socket, uid_t user,
                       const ClientTimeouts& timeouts, Server& server)
    : user_(user),
      timeouts_(timeouts),
      server_(server),
      input_(maximumRequestBytes),
      socket_(std::move(socket)),
      watch_(
          loop.watch(socket_.get(), EPOLLIN, [this](std::uint32_t events) { onSocket(events); })),
      stalled_(loop.timer([this] { end(); })),
      turn_(turns, user, [this] { takeTurn(); }) {}

void Connection::onSocket(std::uint32_t events) {
  ready_ = events;
  waitForTurn();
}

void Connection::takeTurn() {
  const std::uint32_t events = std::exchange(ready_, 0);
  if (events == 0) {
    takeRequest();
    return;
  }
  if ((events & EPOLLIN) != 0) {
    receive();
  }
  if ((events & EPOLLOUT) != 0) {
    send();
  }
  if ((events & (EPOLLIN | EPOLLOUT)) == 0) {
    broken_ = true;  // The client is gone for good, so no answer can reach it.
  }
  proceed();
}

void Connection::answer(std::string_view line) {
  awaitsAnswer_ = false;
  say(line);
  proceed();
}

void Connection::tell(std::string_view line) {
  say(line);
  if (output_.size() > maximumUnreadBytes) {
    broken_ = true;
  }
  proceed();
}

void Connection::say(std::string_view line) {
  output_ += std::string(line) + '\n';
  send();
}

void Connection::receive() {
  std::array<char, bytesPerTurn> chunk;
  const ssize_t received = ::recv(socket_.get(), chunk.data(), chunk.size(), MSG_DONTWAIT);
  if (received > 0) {
    input_.append({chunk.data(), static_cast<std::size_t>(received)});
  } else if (received == 0) {
    inputEnded_ = true;
  } else if (!meansLater(errno)) {
    broken_ = true;
  }
}

void Connection::send() {
  const ssize_t sent =
      ::send(socket_.get(), output_.data(), output_.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
  if (sent >= 0) {
    output_.erase(0, static_cast<std::size_t>(sent));
  } else if (!meansLater(errno)) {
    broken_ = true;
  }
  if (output_.empty()) {
    midwaySince_.reset();
  }
}

/// Decides what the connection waits for next. As it may end the connection, nothing follows it.
void Connection::proceed() {
  if (isOver()) {
    end();
  } else if (turn_.isRequested()) {
    return;
  } else if (awaitsAnswer_) {
    waitForClient(0, false);
  } else if (!output_.empty() && !subscribed_) {
    waitForClient(EPOLLOUT, true);
  } else if (input_.state() == LineSplitter::State::NeedsBytes) {
    waitForClient(output_.empty() ? EPOLLIN : EPOLLIN | EPOLLOUT, input_.hasPartialLine());
  } else {
    waitForTurn();
  }
}

bool Connection::isOver() const {
  const bool noMoreRequests =
      lastResponse_ || (inputEnded_ && input_.state() == LineSplitter::State::NeedsBytes);
  const bool hasAnswered = !awaitsAnswer_ && (output_.empty() || subscribed_);
  return broken_ || (noMoreRequests && hasAnswered);
}

void Connection::takeRequest() {
  midwaySince_.reset();
  if (subscribed_) {
    subscribed_ = false;
    lastResponse_ = true;
    say(alreadySubscribed());
    proceed();
  } else if (input_.state() == LineSplitter::State::HasLine) {
    ask(input_.takeLine());
  } else {
    lastResponse_ = true;
    answer(requestTooLong());
  }
}

void Connection::ask(std::string_view line) {
  const auto self = shared_from_this();  // The answer may come at once, and end the connection.
  awaitsAnswer_ = true;
  server_.respond(line, *this);
  if (awaitsAnswer_) {
    proceed();
  }
}

void Connection::waitForTurn() {
  // Without events alone, a client that has hung up would be reported all the same.
  watch_.disable();
  stalled_.disable();
  turn_.request();
}

/// `midway` means that the timeouts run.
void Connection::waitForClient(std::uint32_t events, bool midway) {
  if (midway) {
    const auto now = steady_clock::now();
    midwaySince_ = midwaySince_.value_or(now);
    const auto rest = std::chrono::ceil<microseconds>(*midwaySince_ + timeouts_.whole - now);
    stalled_.setDelay(std::clamp(rest, microseconds::zero(), timeouts_.progress));
  } else {
    midwaySince_.reset();
    stalled_.disable();
  }
  try {
    watch_.setEvents(events);
    watch_.enable();
  } catch (const std::system_error&) {
    end();  // The system cannot watch one more socket.
  }
}

void Connection::end() {
  server_.connectionEnded(*this);
}

}  // namespace zephlin
