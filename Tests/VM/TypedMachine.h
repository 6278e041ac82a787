#pragma once

#include <gtest/gtest.h>

#include "Tests/VM/Typist.h"

namespace zephlin {

/// One virtual machine for all tests, with keyboard 0 plugged, and a typist of its own for each of
/// them. After a failure it is booted anew.
class TypedMachine : public testing::Test, protected Typist {
 protected:
  TypedMachine() : Typist(machine()) {}
  void TearDown() override;

  static VirtualMachine& machine();
};

}  // namespace zephlin
