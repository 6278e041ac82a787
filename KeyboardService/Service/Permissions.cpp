#include "KeyboardService/Service/Permissions.h"

#include <string>
#include <utility>

#include "KeyboardService/Protocol/Errors.h"

namespace zephlin {

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

}  // namespace zephlin
