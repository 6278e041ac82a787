#include "KeyboardService/Service/Permissions.h"

#include <systemd/sd-login.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <utility>

#include "KeyboardService/Protocol/Errors.h"

namespace zephlin {
namespace {

struct Free {
  void operator()(void* memory) const { std::free(memory); }
};

bool isActiveAndLocal(const char* session) {
  return sd_session_is_active(session) > 0 && sd_session_is_remote(session) == 0;
}

/// Empty for sessions without a seat, such as those of cron, which are always active
/// (sd_session_is_active(3)).
std::string seatOf(const char* session) {
  char* seat = nullptr;
  const bool hasSeat = sd_session_get_seat(session, &seat) >= 0;
  const std::unique_ptr<char, Free> name(seat);
  return hasSeat ? name.get() : "";
}

}  // namespace

Permissions::Permissions(uid_t serviceUser, SeatsOfUser seatsOfUser)
    : serviceUser_(serviceUser), seatsOfUser_(std::move(seatsOfUser)) {}

ChangeableKeyboards Permissions::requireChangeBy(uid_t user) const {
  if (user == 0 || user == serviceUser_) {
    return ChangeableKeyboards::all();
  }
  std::set<std::string> seats = seatsOfUser_(user);
  if (seats.empty()) {
    throw RequestError(
        "permission denied for user " + std::to_string(user) +
        "; only root and users with an active local login session may change keyboards; log in "
        "at the machine itself, or run this as root");
  }
  return ChangeableKeyboards::atSeats(std::move(seats));
}

std::set<std::string> seatsOfActiveLocalSessions(uid_t user) {
  char** names = nullptr;
  const int count = sd_uid_get_sessions(user, 1, &names);
  const std::unique_ptr<char*, Free> list(names);
  std::set<std::string> seats;
  for (int index = 0; index < count; ++index) {
    const std::unique_ptr<char, Free> session(names[index]);
    if (isActiveAndLocal(session.get())) {
      seats.insert(seatOf(session.get()));
    }
  }
  seats.erase("");
  return seats;
}

}  // namespace zephlin
