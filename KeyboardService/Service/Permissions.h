#pragma once

#include <sys/types.h>

#include <functional>

namespace zephlin {

/// Says whether a user has an active login session at this machine itself, not a remote one.
using HasActiveLocalSession = std::function<bool(uid_t user)>;

/// Who may change keyboards: root, the user that the service runs as, and whoever sits at the
/// machine. Everyone may look.
class Permissions {
 public:
  Permissions(uid_t serviceUser, HasActiveLocalSession hasActiveLocalSession);

  [[nodiscard]] bool mayChangeKeyboards(uid_t user) const;

  /// Throws RequestError, which says who may, unless the user may change keyboards.
  void requireChangeBy(uid_t user) const;

 private:
  uid_t serviceUser_;
  HasActiveLocalSession hasActiveLocalSession_;
};

/// Asks systemd-logind's records for a session of the user that is active, has a seat and is not
/// remote. A user of whom nothing can be learnt has none.
bool hasActiveLocalLoginSession(uid_t user);

}  // namespace zephlin
