#include "Tests/Unit/KeyboardService/Support/PrivateRunDirectory.h"

#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <map>
#include <system_error>

namespace zephlin {
namespace {

void check(int result, const char* what) {
  if (result != 0) {
    throw std::system_error(errno, std::generic_category(), what);
  }
}

void write(const std::string& path, const std::string& text) {
  std::ofstream file(path);
  file << text << std::flush;
  if (!file) {
    throw std::system_error(EIO, std::generic_category(), path);
  }
}

/// One user or group that is the same within the namespace as outside.
std::string unchanged(unsigned id) {
  const std::string self = std::to_string(id);
  return self + ' ' + self + " 1";
}

/// An ordinary user may mount only in a user namespace, in which this one stays who he is.
void enterNamespaces() {
  const uid_t user = ::geteuid();
  const gid_t group = ::getegid();
  if (user == 0) {
    check(::unshare(CLONE_NEWNS), "unshare");
    return;
  }
  check(::unshare(CLONE_NEWUSER | CLONE_NEWNS), "unshare");
  write("/proc/self/setgroups", "deny");
  write("/proc/self/uid_map", unchanged(user));
  write("/proc/self/gid_map", unchanged(group));
}

void recordSession(const RecordedLogin& login, const std::string& session) {
  write("/run/systemd/sessions/" + session,
        "UID=" + std::to_string(login.user) + "\nCLASS=user\nTYPE=tty\nACTIVE=" +
            (login.active ? "1" : "0") + "\nSTATE=" + (login.active ? "active" : "online") +
            "\nREMOTE=" + (login.remote ? "1" : "0") + (login.hasSeat ? "\nSEAT=seat0\n" : "\n"));
}

/// The names of a user's sessions.
struct SessionNames {
  std::string all;
  std::string active;
};

void recordUser(uid_t user, const SessionNames& names) {
  write("/run/systemd/users/" + std::to_string(user),
        "STATE=" + std::string(names.active.empty() ? "online" : "active") +
            "\nSESSIONS=" + names.all + "\nONLINE_SESSIONS=" + names.all +
            "\nACTIVE_SESSIONS=" + names.active + "\n");
}

}  // namespace

void enterPrivateRunDirectory(const std::vector<RecordedLogin>& logins) {
  enterNamespaces();
  check(::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr), "private mounts");
  check(::mount("tmpfs", "/run", "tmpfs", 0, "mode=0755"), "mounting /run");
  std::filesystem::create_directories("/run/systemd/users");
  std::filesystem::create_directories("/run/systemd/sessions");
  std::map<uid_t, SessionNames> users;
  int next = 1;
  for (const RecordedLogin& login : logins) {
    const std::string session = std::to_string(next++);
    recordSession(login, session);
    users[login.user].all += session + ' ';
    users[login.user].active += login.active ? session + ' ' : std::string();
  }
  for (const auto& [user, names] : users) {
    recordUser(user, names);
  }
}

}  // namespace zephlin
