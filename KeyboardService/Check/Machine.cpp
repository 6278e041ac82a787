#include "KeyboardService/Check/Machine.h"

#include <sys/utsname.h>
#include <unistd.h>

#include <fstream>
#include <string_view>

#include "KeyboardService/Protocol/Errors.h"

namespace zephlin {
namespace {

constexpr std::string_view nameKey = "PRETTY_NAME=";

std::string withoutQuotes(std::string value) {
  if (value.size() >= 2 && (value.front() == '"' || value.front() == '\'') &&
      value.back() == value.front()) {
    value = value.substr(1, value.size() - 2);
  }
  return value;
}

}  // namespace

std::string distribution(const std::filesystem::path& root) {
  for (const char* const place : {"etc/os-release", "usr/lib/os-release"}) {
    std::ifstream file(root / place);
    for (std::string line; std::getline(file, line);) {
      if (line.starts_with(nameKey)) {
        return printable(withoutQuotes(line.substr(nameKey.size())));
      }
    }
  }
  return "unknown distribution";
}

std::string kernel() {
  utsname names{};
  ::uname(&names);
  return std::string(names.sysname) + ' ' + names.release + ' ' + names.machine;
}

uid_t loginUser(const std::filesystem::path& processes) {
  constexpr auto none = static_cast<uid_t>(-1);
  uid_t user = none;
  std::ifstream(processes / "self/loginuid") >> user;
  return user == none ? ::getuid() : user;
}

std::string session(const Logins& logins, bool isInSshConnection) {
  std::string text;
  for (const std::string& seat : logins.seats) {
    text += (text.empty() ? "local (" : ", ") + printable(seat);
  }
  text += text.empty() ? "" : ")";
  if (logins.isOverSsh || isInSshConnection) {
    text += text.empty() ? "over SSH" : ", and over SSH";
  }
  return text.empty() ? "unknown to systemd-logind" : text;
}

}  // namespace zephlin
