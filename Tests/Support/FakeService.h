#pragma once

#include <string>

#include "Base/FileDescriptor.h"

namespace zephlin::test {

/// A keyboard service with one client, which answers what the test says. Its socket's file stays,
/// as that of a service that was killed.
class FakeService {
 public:
  enum class Socket { Listening, Bound };

  /// Throws std::system_error where the path cannot be bound.
  explicit FakeService(const std::string& path, Socket socket = Socket::Listening);

  void listen();
  /// Whether a client comes, while Qt's loop runs. A former one is hung up on first.
  bool accept();
  /// Whether a client comes, asks to subscribe and takes the answer.
  bool acceptSubscription();
  void send(const std::string& bytes);
  void hangUp() { client_.close(); }
  [[nodiscard]] bool hasClient() const { return client_.isOpen(); }
  /// Whether another client is waiting to be accepted.
  [[nodiscard]] bool isAwaited() const;
  /// Whether the client hangs up, while Qt's loop runs.
  bool isHungUpOn();

 private:
  bool receivesRequest();

  FileDescriptor listener_;
  FileDescriptor client_;
};

}  // namespace zephlin::test
