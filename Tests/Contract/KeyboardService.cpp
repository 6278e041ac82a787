#include "Tests/Contract/KeyboardService.h"

#include <algorithm>
#include <filesystem>
#include <stdexcept>

#include "Tests/Support/QtLoop.h"

namespace zephlin::contract {

namespace {

constexpr const char* socketPath = "/run/zephlin/hidd.sock";

bool hasSubscribed(const QByteArray& received) {
  return received == "{\"request\":\"subscribe\"}\n";
}

}  // namespace

KeyboardService::KeyboardService() {
  std::filesystem::create_directories(std::filesystem::path(socketPath).parent_path());
  QLocalServer::removeServer(socketPath);
  QObject::connect(&server_, &QLocalServer::newConnection, &server_, [this] { accept(); });
  if (!server_.listen(socketPath)) {
    throw std::runtime_error(server_.errorString().toStdString());
  }
}

void KeyboardService::plugKeyboard() {
  // Lets clients come and go first, whose messages are there already.
  test::runLoopFor(std::chrono::milliseconds(20));
  test::eventually([this] {
    return std::any_of(clients_.begin(), clients_.end(),
                       [](const auto& client) { return hasSubscribed(client.second); });
  });
  for (const auto& [socket, received] : clients_) {
    socket->write("{\"appeared\":\"100000001\"}\n");
    socket->flush();
  }
}

void KeyboardService::accept() {
  QLocalSocket* const socket = server_.nextPendingConnection();
  clients_[socket];
  QObject::connect(socket, &QLocalSocket::disconnected, socket,
                   [this, socket] { clients_.erase(socket); });
  const auto receive = [this, socket] {
    clients_[socket] += socket->readAll();
    if (hasSubscribed(clients_[socket])) {
      socket->write("{\"subscribed\":true}\n");
      socket->flush();
    }
  };
  QObject::connect(socket, &QLocalSocket::readyRead, socket, receive);
}

}  // namespace zephlin::contract
