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

/// A property of a session, or empty.
std::string ofSession(const char* session, int (*property)(const char* session, char** value)) {
  char* value = nullptr;
  const bool hasValue = property(session, &value) >= 0;
  const std::unique_ptr<char, Free> owned(value);
  return hasValue ? value : "";
}

}  // namespace

Permissions::Permissions(uid_t serviceUser, LoginsOfUser loginsOfUser)
    : serviceUser_(serviceUser), loginsOfUser_(std::move(loginsOfUser)) {}

ChangeableKeyboards Permissions::requireChangeBy(uid_t user) const {
  if (user == 0 || user == serviceUser_) {
    return ChangeableKeyboards::all();
  }
  Logins logins = loginsOfUser_(user);
  if (!logins.seats.empty()) {
    return ChangeableKeyboards::atSeats(std::move(logins.seats));
  }
  const std::string denied = "permission denied for user " + std::to_string(user) + "; ";
  if (logins.isOverSsh) {
    throw RequestError(denied + "you are logged in over SSH: use sudo");
  }
  throw RequestError(
      denied +
      "only root and users with an active local login session may change keyboards; log in at the "
      "machine itself, or run this as root");
}

Logins loginsOf(uid_t user) {
  char** names = nullptr;
  const int count = sd_uid_get_sessions(user, 1, &names);
  const std::unique_ptr<char*, Free> list(names);
  Logins logins;
  for (int index = 0; index < count; ++index) {
    const std::unique_ptr<char, Free> session(names[index]);
    if (isActiveAndLocal(session.get())) {
      logins.seats.insert(ofSession(session.get(), sd_session_get_seat));
    }
    logins.isOverSsh =
        logins.isOverSsh || ofSession(session.get(), sd_session_get_service) == "sshd";
  }
  // Sessions without a seat, such as those of cron, are always active (sd_session_is_active(3)).
  logins.seats.erase("");
  return logins;
}

}  // namespace zephlin
