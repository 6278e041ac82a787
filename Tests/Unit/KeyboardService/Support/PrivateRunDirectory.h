#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace zephlin {

/// A login session as systemd-logind would put it on record.
struct RecordedLogin {
  uid_t user = 0;
  bool active = true;
  bool remote = false;
  bool hasSeat = true;
};

/// Gives the calling process, which is a child of the test made for this, a /run of its own with
/// these logins on record. The machine's /run is not touched. Throws std::system_error.
void enterPrivateRunDirectory(const std::vector<RecordedLogin>& logins);

}  // namespace zephlin
