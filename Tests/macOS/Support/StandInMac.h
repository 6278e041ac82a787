#pragma once

#import "Support/MacTest.h"

namespace zephlin::test {

/// How many objects of the class, and of none of its subclasses, there are.
int liveObjectsOf(const char* className);

/// The log lines that were written, without dates.
Calls logLines();

}  // namespace zephlin::test
