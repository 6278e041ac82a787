#include "Platform/Linux/Watching/ServiceConnection.h"

#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <string_view>
#include <system_error>
#include <utility>

#include "KeyboardService/Protocol/Messages.h"

namespace zephlin {

namespace {

FileDescriptor connectedSocket(const std::string& path) {
  const SocketAddress address(path);
  // The empty buffer of a new socket holds it whole.
  const std::string request = encode(SubscribeRequest{}) + '\n';
  FileDescriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
  if (!socket.isOpen() || ::connect(socket.get(), address.get(), address.size()) != 0 ||
      ::send(socket.get(), request.data(), request.size(), MSG_NOSIGNAL) < 0) {
    throw std::system_error(errno, std::generic_category(), path);
  }
  return socket;
}

ServiceNews newsInLine(std::string_view line, bool isSubscribed) {
  try {
    const Response response = decodeResponse(line);
    if (!isSubscribed && std::holds_alternative<SubscribeResponse>(response)) {
      return ServiceNews::Subscribed;
    }
    if (isSubscribed && std::holds_alternative<AppearedNotice>(response)) {
      return ServiceNews::Appeared;
    }
  } catch (const ResponseError&) {
  }
  return ServiceNews::Ended;
}

}  // namespace

ServiceConnection::ServiceConnection(const std::string& path,
                                     std::function<void(ServiceNews)> callback)
    : callback_(std::move(callback)),
      socket_(connectedSocket(path)),
      notifier_(socket_.get(), QSocketNotifier::Read) {
  QObject::connect(&notifier_, &QSocketNotifier::activated, [this] { receive(); });
}

void ServiceConnection::receive() {
  std::array<char, maximumNoticeBytes> bytes{};
  const ssize_t count = ::recv(socket_.get(), bytes.data(), bytes.size(), 0);
  if (count < 0 && (errno == EAGAIN || errno == EINTR)) {
    return;
  }
  std::vector<ServiceNews> news;
  if (count > 0) {
    received_.append({bytes.data(), static_cast<std::size_t>(count)});
    news = takeNews();
  } else {
    news.push_back(ServiceNews::Ended);
  }
  callback_.callForEach(news);
}

std::vector<ServiceNews> ServiceConnection::takeNews() {
  std::vector<ServiceNews> news;
  while (received_.state() == LineSplitter::State::HasLine) {
    news.push_back(newsInLine(received_.takeLine(), isSubscribed_));
    if (news.back() == ServiceNews::Ended) {
      return news;
    }
    isSubscribed_ = true;
  }
  if (received_.state() == LineSplitter::State::LineTooLong) {
    news.push_back(ServiceNews::Ended);
  }
  return news;
}

}  // namespace zephlin
