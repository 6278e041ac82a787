#pragma once

#include <sys/types.h>

#include <functional>

namespace zephlin {

/// Whether a user has an active login session at the machine itself, not a remote one.
using HasActiveLocalSession = std::function<bool(uid_t user)>;

/// Who may change keyboards: root, the user that the service runs as, and users who sit at the
/// machine. Everyone may read.
class Permissions {
 public:
  Permissions(uid_t serviceUser, HasActiveLocalSession hasActiveLocalSession);

  [[nodiscard]] bool mayChangeKeyboards(uid_t user) const;

  /// Throws RequestError unless the user may change keyboards.
  void requireChangeBy(uid_t user) const;

 private:
  uid_t serviceUser_;
  HasActiveLocalSession hasActiveLocalSession_;
};

/// Whether systemd-logind has a session of the user that is active, has a seat and is not remote.
/// False if that cannot be found out.
bool hasActiveLocalLoginSession(uid_t user);

}  // namespace zephlin
