#include "KeyboardService/Service/Clients/Connection.h"

#include <sys/epoll.h>
#include <sys/socket.h>

#include <array>
#include <cerrno>

#include "KeyboardService/Protocol/Messages.h"
#include "KeyboardService/Protocol/Transport.h"
#include "KeyboardService/Service/Clients/Server.h"

namespace zephlin {
namespace {

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

Connection::Connection(EventLoop& loop, FileDescriptor socket, uid_t user,
                       std::chrono::microseconds timeout, Server& server)
    : user_(user),
      timeout_(timeout),
      server_(server),
      input_(maximumRequestBytes),
      socket_(std::move(socket)),
      watch_(
          loop.watch(socket_.get(), EPOLLIN, [this](std::uint32_t events) { onSocket(events); })),
      nextRequest_(loop.timer([this] { takeRequest(); })),
      stalled_(loop.timer([this] { end(); })) {}

void Connection::onSocket(std::uint32_t events) {
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

void Connection::tell(std::string_view line) {
  output_ += std::string(line) + '\n';
  send();
  if (output_.size() > maximumUnreadBytes) {
    broken_ = true;
  }
  proceed();
}

void Connection::receive() {
  std::array<char, bytesPerTurn> chunk;
  const ssize_t received = ::recv(socket_.get(), chunk.data(), chunk.size(), MSG_DONTWAIT);
  if (received > 0) {
    input_.append({chunk.data(), static_cast<std::size_t>(received)});
    progressed_ = true;
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
    progressed_ = true;
  } else if (!meansLater(errno)) {
    broken_ = true;
  }
}

/// Decides what the connection waits for next. As it may end the connection, nothing follows it.
void Connection::proceed() {
  if (isOver()) {
    end();
  } else if (!output_.empty() && !subscribed_) {
    waitForClient(EPOLLOUT, true);
  } else if (input_.state() == LineSplitter::State::NeedsBytes) {
    waitForClient(output_.empty() ? EPOLLIN : EPOLLIN | EPOLLOUT, input_.hasPartialLine());
  } else {
    watch_.setEvents(0);
    stalled_.disable();
    nextRequest_.setDelay(server_.restBeforeRequest());
  }
}

bool Connection::isOver() const {
  const bool noMoreRequests =
      lastResponse_ || (inputEnded_ && input_.state() == LineSplitter::State::NeedsBytes);
  return broken_ || (noMoreRequests && (output_.empty() || subscribed_));
}

void Connection::takeRequest() {
  if (const auto rest = server_.restBeforeRequest(); rest > rest.zero()) {
    nextRequest_.setDelay(rest);  // Another client's request was taken meanwhile.
    return;
  }
  if (subscribed_) {
    output_ += alreadySubscribed() + '\n';
    subscribed_ = false;
    lastResponse_ = true;
  } else if (input_.state() == LineSplitter::State::HasLine) {
    output_ = server_.respond(input_.takeLine(), *this) + '\n';
  } else {
    output_ = requestTooLong() + '\n';
    lastResponse_ = true;
  }
  send();
  proceed();
}

/// `midway` means that the timeout runs.
void Connection::waitForClient(std::uint32_t events, bool midway) {
  watch_.setEvents(events);
  if (!midway) {
    stalled_.disable();
  } else if (progressed_ || !stalled_.isEnabled()) {
    stalled_.setDelay(timeout_);
  }
  progressed_ = false;
}

void Connection::end() {
  server_.connectionEnded(*this);
}

}  // namespace zephlin
