#pragma once

#include <sys/types.h>

#include <functional>
#include <set>
#include <string>

namespace zephlin {

/// How a user is logged in, as far as systemd-logind knows.
struct Logins {
  /// Where the user has an active session at the machine itself.
  std::set<std::string> seats;
  /// The user has a session over SSH.
  bool isOverSsh = false;
};

using LoginsOfUser = std::function<Logins(uid_t user)>;

/// Why a keyboard is not set that a user may not change.
constexpr const char* notOnYourSeat = "not on your seat";

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
  Permissions(uid_t serviceUser, LoginsOfUser loginsOfUser);

  /// Throws RequestError if the user may change no keyboard.
  [[nodiscard]] ChangeableKeyboards requireChangeBy(uid_t user) const;

 private:
  uid_t serviceUser_;
  LoginsOfUser loginsOfUser_;
};

/// Asks systemd-logind. None if that cannot be found out.
Logins loginsOf(uid_t user);

}  // namespace zephlin
