#include "Tests/Desktop/Harness/PrivateMachine.h"

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
const files::path machinesPrograms = "/run/machine-programs";

void require(bool success, const char* what) {
  if (!success) {
    throw std::system_error(errno, std::generic_category(), what);
  }
}

void write(const char* file, const std::string& text) {
  require(static_cast<bool>(std::ofstream(file) << text << std::flush), file);
}

void enterNamespaces() {
  const uid_t user = ::geteuid();
  const gid_t group = ::getegid();
  if (user == 0) {
    require(::unshare(CLONE_NEWNS) == 0, "unshare");
    return;
  }
  require(::unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0, "unshare");
  write("/proc/self/uid_map", "0 " + std::to_string(user) + " 1");
  write("/proc/self/setgroups", "deny");
  write("/proc/self/gid_map", "0 " + std::to_string(group) + " 1");
}

void mountEmpty(const files::path& folder) {
  require(::mount("none", folder.c_str(), "tmpfs", 0, "mode=755") == 0, folder.c_str());
}

}  // namespace

void enterPrivateMachine(const std::map<std::string, std::string>& programs) {
  enterNamespaces();
  require(::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0, "mount /");
  mountEmpty("/run");
  files::create_directory(machinesPrograms);
  require(::mount(programFolder.c_str(), machinesPrograms.c_str(), nullptr, MS_BIND | MS_REC,
                  nullptr) == 0,
          machinesPrograms.c_str());
  mountEmpty(programFolder);
  for (const auto& [name, target] : programs) {
    files::create_symlink(target, programFolder / name);
  }
  for (const auto& entry : files::directory_iterator(machinesPrograms)) {
    const files::path name = entry.path().filename();
    if (!programs.contains(name)) {
      // A relative link must be resolved from where it stood.
      files::create_symlink(entry.is_symlink() ? files::read_symlink(entry) : entry.path(),
                            programFolder / name);
    }
  }
}

}  // namespace zephlin::test
