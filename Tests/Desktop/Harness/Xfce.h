#pragma once

#include "Tests/Desktop/Harness/Shell.h"

namespace zephlin::test {

/// Openbox and Xfce's panel on X11.
std::unique_ptr<Shell> makeXfce(const Seat& seat);

}  // namespace zephlin::test
