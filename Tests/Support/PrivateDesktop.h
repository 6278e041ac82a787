#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <QTemporaryDir>
#include <functional>
#include <memory>
#include <optional>

#include "Tests/Support/Daemon.h"
#include "Tests/Support/PrivateXServer.h"

namespace zephlin::test {

/// An X server, a system bus and, if wanted, a session bus and Qt's application on them, as this
/// process's environment says. One in a process: libdbus connects to a bus once. Added to a test
/// program's environments and not made in main, so that tests can be listed without a display.
class PrivateDesktop final : public testing::Environment {
 public:
  enum class SessionBus { Present, Absent };
  enum class Application { Present, Absent };

  PrivateDesktop(SessionBus sessionBus, Application application);
  ~PrivateDesktop() override;

  void SetUp() override;
  void TearDown() override;

  [[nodiscard]] PrivateXServer& xServer() { return *xServer_; }

 private:
  SessionBus wantedBus_;
  Application wantedApplication_;
  std::unique_ptr<QTemporaryDir> folder_;
  std::optional<PrivateXServer> xServer_;
  std::optional<MessageBus> systemBus_;
  std::optional<MessageBus> sessionBus_;
  std::unique_ptr<QApplication> application_;
};

}  // namespace zephlin::test
