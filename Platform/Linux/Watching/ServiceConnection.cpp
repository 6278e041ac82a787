#include "Platform/Linux/Watching/ServiceConnection.h"

#include <sys/socket.h>
#include <sys/un.h>

#include <QJsonDocument>
#include <QJsonObject>
#include <array>
#include <cerrno>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>

namespace zephlin {

namespace {

constexpr std::string_view subscribeRequest = "{\"request\":\"subscribe\"}\n";
/// Far more than a service of ours sends.
constexpr qsizetype maximumLineBytes = 4096;

std::system_error lastError(const std::string& path) {
  return {errno, std::generic_category(), path};
}

FileDescriptor connectedSocket(const std::string& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.size() >= sizeof address.sun_path) {
    throw std::system_error(ENAMETOOLONG, std::generic_category(), path);
  }
  path.copy(address.sun_path, path.size());
  FileDescriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
  if (!socket.isOpen() ||
      ::connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    throw lastError(path);
  }
  // The empty buffer of a new socket holds it whole.
  if (::send(socket.get(), subscribeRequest.data(), subscribeRequest.size(), MSG_NOSIGNAL) < 0) {
    throw lastError(path);
  }
  return socket;
}

std::optional<ServiceNews> newsInLine(const QByteArray& line, bool isSubscribed) {
  const QJsonObject object = QJsonDocument::fromJson(line).object();
  if (!isSubscribed && object["subscribed"].toBool()) {
    return ServiceNews::Subscribed;
  }
  if (isSubscribed && object["appeared"].isString()) {
    return ServiceNews::Appeared;
  }
  return std::nullopt;
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
  std::array<char, maximumLineBytes> bytes{};
  const ssize_t count = ::recv(socket_.get(), bytes.data(), bytes.size(), 0);
  if (count < 0 && (errno == EAGAIN || errno == EINTR)) {
    return;
  }
  std::vector<ServiceNews> news;
  if (count > 0) {
    received_.append(bytes.data(), count);
    news = takeNews();
  } else {
    news.push_back(ServiceNews::Ended);
  }
  callback_.callForEach(news);
}

std::vector<ServiceNews> ServiceConnection::takeNews() {
  std::vector<ServiceNews> news;
  for (qsizetype end = received_.indexOf('\n'); end >= 0; end = received_.indexOf('\n')) {
    const auto one = newsInLine(received_.left(end), isSubscribed_);
    received_.remove(0, end + 1);
    news.push_back(one.value_or(ServiceNews::Ended));
    if (!one) {
      return news;
    }
    isSubscribed_ = true;
  }
  if (received_.size() > maximumLineBytes) {
    news.push_back(ServiceNews::Ended);
  }
  return news;
}

}  // namespace zephlin
