#pragma once

#include <sys/types.h>

namespace zephlin {

/// Asks systemd-logind's records for a session of the user that is active, has a seat and is not
/// remote. A user of whom nothing can be learnt has none.
bool hasActiveLocalLoginSession(uid_t user);

}  // namespace zephlin
