#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <QTemporaryDir>
#include <functional>
#include <memory>
#include <optional>

#include "Tests/Support/Daemon.h"

namespace zephlin::test {

/// An X display, with or without a session bus, and an application on it. One in a process.
class PrivateDesktop {
 public:
  enum class SessionBus { Present, Absent };

  explicit PrivateDesktop(SessionBus sessionBus);
  PrivateDesktop(const PrivateDesktop&) = delete;
  PrivateDesktop& operator=(const PrivateDesktop&) = delete;
  ~PrivateDesktop();

 private:
  QTemporaryDir runtimeDirectory_;
  XServer display_;
  std::optional<MessageBus> bus_;
  std::unique_ptr<QApplication> application_;
};

/// Gives all tests of a program such a desktop. Not to be made in main, so that the tests can be
/// listed where no display can be started.
class DesktopEnvironment final : public ::testing::Environment {
 public:
  explicit DesktopEnvironment(PrivateDesktop::SessionBus sessionBus) : sessionBus_(sessionBus) {}
  void SetUp() override { desktop_.emplace(sessionBus_); }
  void TearDown() override { desktop_.reset(); }

 private:
  PrivateDesktop::SessionBus sessionBus_;
  std::optional<PrivateDesktop> desktop_;
};

/// Handles events until the condition holds. False if it does not within a minute.
bool waitUntil(const std::function<bool()>& condition);

}  // namespace zephlin::test
