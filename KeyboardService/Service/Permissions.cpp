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

/// Sessions without a seat, such as those of cron, are always active (sd_session_is_active(3)).
bool hasSeat(const char* session) {
  char* seat = nullptr;
  const bool result = sd_session_get_seat(session, &seat) >= 0;
  const std::unique_ptr<char, Free> name(seat);
  return result;
}

bool isActiveAndLocal(const char* session) {
  return sd_session_is_active(session) > 0 && sd_session_is_remote(session) == 0 &&
         hasSeat(session);
}

}  // namespace

Permissions::Permissions(uid_t serviceUser, HasActiveLocalSession hasActiveLocalSession)
    : serviceUser_(serviceUser), hasActiveLocalSession_(std::move(hasActiveLocalSession)) {}

bool Permissions::mayChangeKeyboards(uid_t user) const {
  return user == 0 || user == serviceUser_ || hasActiveLocalSession_(user);
}

void Permissions::requireChangeBy(uid_t user) const {
  if (!mayChangeKeyboards(user)) {
    throw RequestError(
        "permission denied for user " + std::to_string(user) +
        "; only root and users with an active local login session may change keyboards; log in "
        "at the machine itself, or run this as root");
  }
}

bool hasActiveLocalLoginSession(uid_t user) {
  char** names = nullptr;
  const int count = sd_uid_get_sessions(user, 1, &names);
  const std::unique_ptr<char*, Free> list(names);
  bool found = false;
  for (int index = 0; index < count; ++index) {
    const std::unique_ptr<char, Free> session(names[index]);
    found = found || isActiveAndLocal(session.get());
  }
  return found;
}

}  // namespace zephlin
