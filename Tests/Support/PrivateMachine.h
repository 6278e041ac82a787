#pragma once

#include <sys/types.h>

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace zephlin::test {

/// Who the user is on the private machine: the same as outside, or an ordinary user even if that is
/// root. Some compositors refuse to run as root.
enum class Identity { Unchanged, Ordinary };

/// Gives this process and its children a mount namespace in which /run is empty. The machine itself
/// does not change. Anyone who is not root on both gets a user namespace too. Call before the first
/// thread; like the functions below it throws std::system_error.
void enterPrivateMachine(Identity identity = Identity::Unchanged);

/// Makes the private machine's /sys empty, so that there are no devices.
void hideDevices();

/// Makes a folder the private machine's /usr/bin.
void mountPrograms(const std::string& folder);

/// Adds programs to those in /usr/bin, or puts them in their place: names and the files to link to.
void addPrograms(const std::map<std::string, std::string>& programs);

/// A login session as systemd-logind would record it.
struct RecordedLogin {
  uid_t user = 0;
  bool active = true;
  bool remote = false;
  std::string_view seat = "seat0";  ///< May be empty.
  std::string_view service = "login";
};

/// Records these logins in the private machine's /run.
void recordLogins(const std::vector<RecordedLogin>& logins);

}  // namespace zephlin::test
