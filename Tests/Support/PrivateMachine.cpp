#include "Tests/Support/PrivateMachine.h"

#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <system_error>

namespace zephlin::test {
namespace {

namespace files = std::filesystem;

const files::path programFolder = "/usr/bin";
constexpr unsigned ordinaryUser = 1000;

void require(bool success, const std::string& what) {
  if (!success) {
    throw std::system_error(errno, std::generic_category(), what);
  }
}

void write(const std::string& file, const std::string& text) {
  require(static_cast<bool>(std::ofstream(file) << text << std::flush), file);
}

void mountEmpty(const files::path& folder) {
  require(::mount("none", folder.c_str(), "tmpfs", 0, "mode=755") == 0, folder);
}

void bind(const files::path& from, const files::path& to) {
  require(::mount(from.c_str(), to.c_str(), nullptr, MS_BIND | MS_REC, nullptr) == 0, to);
}

/// One user or group of the namespace and the one that it is outside.
std::string idMap(Identity identity, unsigned id) {
  const unsigned inside = identity == Identity::Ordinary ? ordinaryUser : id;
  return std::to_string(inside) + " " + std::to_string(id) + " 1";
}

void enterNamespaces(Identity identity) {
  const uid_t user = ::geteuid();
  const gid_t group = ::getegid();
  if (user == 0 && identity == Identity::Unchanged) {
    require(::unshare(CLONE_NEWNS) == 0, "unshare");
    return;
  }
  require(::unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0, "unshare");
  write("/proc/self/uid_map", idMap(identity, user));
  write("/proc/self/setgroups", "deny");
  write("/proc/self/gid_map", idMap(identity, group));
}

/// The names of a user's sessions.
struct SessionNames {
  std::string all;
  std::string active;
};

void recordSession(const RecordedLogin& login, const std::string& session) {
  write("/run/systemd/sessions/" + session,
        "UID=" + std::to_string(login.user) + "\nCLASS=user\nTYPE=tty\nACTIVE=" +
            (login.active ? "1" : "0") + "\nSTATE=" + (login.active ? "active" : "online") +
            "\nSERVICE=" + std::string(login.service) + "\nREMOTE=" + (login.remote ? "1" : "0") +
            (login.seat.empty() ? "" : "\nSEAT=" + std::string(login.seat)) + "\n");
}

void recordUser(uid_t user, const SessionNames& names) {
  write("/run/systemd/users/" + std::to_string(user),
        "STATE=" + std::string(names.active.empty() ? "online" : "active") +
            "\nSESSIONS=" + names.all + "\nONLINE_SESSIONS=" + names.all +
            "\nACTIVE_SESSIONS=" + names.active + "\n");
}

}  // namespace

void enterPrivateMachine(Identity identity) {
  enterNamespaces(identity);
  require(::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0, "mount /");
  mountEmpty("/run");
}

void hideDevices() {
  mountEmpty("/sys");
}

void mountPrograms(const std::string& folder) {
  bind(folder, programFolder);
}

void addPrograms(const std::map<std::string, std::string>& programs) {
  const files::path former = "/run/machine-programs";
  files::create_directory(former);
  bind(programFolder, former);
  mountEmpty(programFolder);
  for (const auto& [name, target] : programs) {
    files::create_symlink(target, programFolder / name);
  }
  for (const auto& entry : files::directory_iterator(former)) {
    const files::path name = entry.path().filename();
    if (!programs.contains(name)) {
      // A relative link is resolved from where it was.
      files::create_symlink(entry.is_symlink() ? files::read_symlink(entry) : entry.path(),
                            programFolder / name);
    }
  }
}

void recordLogins(const std::vector<RecordedLogin>& logins) {
  files::create_directories("/run/systemd/users");
  files::create_directories("/run/systemd/sessions");
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

}  // namespace zephlin::test
