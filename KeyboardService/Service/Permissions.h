#pragma once

#include <sys/types.h>

#include <functional>
#include <set>
#include <string>

namespace zephlin {

/// The seats at which a user has an active login session at the machine itself, not a remote one.
using SeatsOfUser = std::function<std::set<std::string>(uid_t user)>;

/// Which keyboards one user may change.
class ChangeableKeyboards {
 public:
  static ChangeableKeyboards all() { return ChangeableKeyboards(true, {}); }
  static ChangeableKeyboards atSeats(std::set<std::string> seats) {
    return ChangeableKeyboards(false, std::move(seats));
  }

  /// `seat` is a keyboard's; it is empty for one that has no seat, which everyone who sits at the
  /// machine may change.
  [[nodiscard]] bool includes(const std::string& seat) const {
    return areAll_ || (seat.empty() ? !seats_.empty() : seats_.contains(seat));
  }

 private:
  ChangeableKeyboards(bool areAll, std::set<std::string> seats)
      : areAll_(areAll), seats_(std::move(seats)) {}

  bool areAll_;
  std::set<std::string> seats_;
};

/// Who may change keyboards: root, the user that the service runs as, and users who sit at the
/// keyboard's seat. Everyone may read.
class Permissions {
 public:
  Permissions(uid_t serviceUser, SeatsOfUser seatsOfUser);

  /// Throws RequestError if the user may change no keyboard.
  [[nodiscard]] ChangeableKeyboards requireChangeBy(uid_t user) const;

 private:
  uid_t serviceUser_;
  SeatsOfUser seatsOfUser_;
};

/// The seats of the user's sessions that systemd-logind knows as active and not remote. Empty if
/// that cannot be found out.
std::set<std::string> seatsOfActiveLocalSessions(uid_t user);

}  // namespace zephlin
