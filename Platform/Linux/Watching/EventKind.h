#pragma once

namespace zephlin {

/// A type and a code of linux/input-event-codes.h.
struct EventKind {
  unsigned type;
  unsigned code;
};

}  // namespace zephlin
