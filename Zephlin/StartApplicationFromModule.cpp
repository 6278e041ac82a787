// The application comes from a module, so that the command line starts without a toolkit and a
// server needs none.

#include <dlfcn.h>
#include <unistd.h>

#include <array>
#include <climits>
#include <cstdio>
#include <string>

#include "Zephlin/StartApplication.h"

namespace {

int fail(const std::string& reason) {
  std::fputs(("Zephlin: " + reason + "\n").c_str(), stderr);
  return 1;
}

/// Beside the program itself, even if it was started by a link.
std::string modulePath() {
  std::array<char, PATH_MAX> program{};
  const ssize_t length = ::readlink("/proc/self/exe", program.data(), program.size());
  const std::string path(program.data(), length > 0 ? static_cast<std::size_t>(length) : 0);
  return path.substr(0, path.rfind('/') + 1) + ZEPHLIN_DESKTOP_MODULE;
}

}  // namespace

int zephlinStartApplication(int argc, char** argv) {
  const std::string path = modulePath();
  if (::access(path.c_str(), F_OK) != 0) {
    return fail("the menu bar app is not installed; install the package zephlin-desktop");
  }
  // Never closed: the toolkit in it installs handlers that run when the process ends. Lazy, because
  // not every library below it needs all of its symbols; the module itself is linked with -z now.
  void* const module = ::dlopen(path.c_str(), RTLD_LAZY | RTLD_LOCAL);
  void* const symbol = module == nullptr ? nullptr : ::dlsym(module, "zephlinStartApplication");
  if (symbol == nullptr) {
    return fail("cannot load the menu bar app; reinstall the package zephlin-desktop: " +
                std::string(::dlerror()));
  }
  return reinterpret_cast<decltype(&zephlinStartApplication)>(symbol)(argc, argv);
}
