#pragma once

#include <map>
#include <string>

namespace zephlin::test {

/// Gives this process and its children a mount namespace in which /run is empty and /usr/bin holds
/// the machine's programs and, over them, `programs` (a name and the path of the file that stands
/// there). Nothing is left on the machine. Whoever is not root becomes root of a user namespace.
/// Call before the first thread; throws std::system_error.
void enterPrivateMachine(const std::map<std::string, std::string>& programs);

}  // namespace zephlin::test
