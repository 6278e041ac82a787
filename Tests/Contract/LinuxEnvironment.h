#pragma once

#include <QTemporaryDir>
#include <memory>

#include "Tests/Support/Daemon.h"
#include "Tests/Unit/Linux/Watching/Support/PrivateSystemBus.h"
#include "Tests/Unit/Linux/Watching/Support/PrivateXServer.h"

namespace zephlin::contract {

/// What a Linux desktop consists of but the application: an X server and the two message buses, all
/// of them the test's own. It lasts as long as the program: libdbus connects to a bus once in a
/// process.
class LinuxEnvironment {
 public:
  LinuxEnvironment();

  test::PrivateXServer& xServer() { return xServer_; }

 private:
  QTemporaryDir busFolder_;
  test::PrivateXServer xServer_;
  test::MessageBus sessionBus_;
  std::unique_ptr<test::PrivateSystemBus> systemBus_;
};

/// The one of this program; there while its tests run.
LinuxEnvironment& linuxEnvironment();

}  // namespace zephlin::contract
