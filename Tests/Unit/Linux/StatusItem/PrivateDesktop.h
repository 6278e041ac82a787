#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <QProcess>
#include <QTemporaryDir>
#include <functional>
#include <memory>
#include <optional>

namespace zephlin::test {

/// A server of the test's own, killed at the end, or by the kernel when the test itself is.
class Daemon {
 public:
  /// Starts it and waits for its first line of output, which tells that it can be reached, and
  /// where. Throws std::runtime_error if there is none within a minute.
  Daemon(const QString& program, const QStringList& arguments);
  Daemon(const Daemon&) = delete;
  Daemon& operator=(const Daemon&) = delete;
  ~Daemon();

  [[nodiscard]] const QByteArray& address() const { return address_; }

 private:
  QProcess process_;
  QByteArray address_;
};

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
  Daemon display_;
  std::optional<Daemon> bus_;
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
