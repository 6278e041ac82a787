#include "KeyboardService/Service/PropertyStore.h"

#include <fcntl.h>
#include <nlohmann/json.hpp>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "Base/FileDescriptor.h"
#include "KeyboardService/Protocol/Errors.h"
#include "KeyboardService/Protocol/Json.h"

namespace zephlin {
namespace {

using nlohmann::json;

constexpr JsonObjectShape fileShape{"it", R"({"bootID":"…","keyboards":{}})"};

/// Far more than the properties of any number of keyboards take.
constexpr std::size_t maximumBytes = std::size_t{16} * 1024 * 1024;

int checked(int result) {
  if (result < 0) {
    throw std::system_error(errno, std::generic_category());
  }
  return result;
}

void requireOwnFile(const FileDescriptor& file) {
  struct stat status {};
  checked(::fstat(file.get(), &status));
  if (!S_ISREG(status.st_mode) || status.st_uid != ::geteuid()) {
    throw std::runtime_error("it is not a file of this user");
  }
}

std::string contentOf(const FileDescriptor& file) {
  std::string content;
  std::array<char, 4096> chunk;
  while (const int count =
             checked(static_cast<int>(::read(file.get(), chunk.data(), chunk.size())))) {
    content.append(chunk.data(), static_cast<std::size_t>(count));
    if (content.size() > maximumBytes) {
      throw std::runtime_error("it is too long");
    }
  }
  return content;
}

PropertyStore::Properties decode(const std::string& text, const std::string& bootID) {
  const json content = parseJsonObject(text, fileShape);
  const auto boot = content.find("bootID");
  const auto keyboards = content.find("keyboards");
  if (boot == content.end() || keyboards == content.end() || !keyboards->is_object()) {
    throw std::runtime_error("a member is missing");
  }
  if (*boot != bootID) {
    throw std::runtime_error("the machine was started again since");
  }
  PropertyStore::Properties properties;
  for (const auto& [identity, each] : keyboards->items()) {
    PropertySet set = propertiesFromJson(each);
    requireCapsLockDelayInRange(set);
    properties.emplace(identity, std::move(set));
  }
  return properties;
}

}  // namespace

PropertyStore::PropertyStore(std::string path, std::string bootID, Log log)
    : path_(std::move(path)), bootID_(std::move(bootID)), log_(std::move(log)) {
  try {
    fromEarlierRun_ = read();
    kept_ = fromEarlierRun_;
  } catch (const std::exception& error) {
    log_("ignoring " + path_ + ": " + error.what());
  }
}

PropertyStore::Properties PropertyStore::read() const {
  const FileDescriptor file(::open(path_.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  if (!file.isOpen() && errno == ENOENT) {
    return {};
  }
  checked(file.get());
  requireOwnFile(file);
  return decode(contentOf(file), bootID_);
}

PropertySet PropertyStore::take(const std::string& identity) {
  const auto node = fromEarlierRun_.extract(identity);
  return node.empty() ? PropertySet{} : node.mapped();
}

void PropertyStore::keep(const Properties& properties) {
  if (properties == kept_ && !isInTrouble_) {
    return;
  }
  kept_ = properties;
  try {
    if (!properties.empty()) {
      write(jsonLine(json{{"bootID", bootID_}, {"keyboards", properties}}) + '\n');
    } else if (::unlink(path_.c_str()) != 0 && errno != ENOENT) {
      checked(-1);
    }
    isInTrouble_ = false;
  } catch (const std::system_error& error) {
    if (!std::exchange(isInTrouble_, true)) {
      log_("cannot keep properties in " + path_ + errnoText(error.code().value()) +
           "; they would be lost if the service were started again");
    }
  }
}

/// A file beside it takes its place when it is complete.
void PropertyStore::write(const std::string& text) const {
  const std::string next = path_ + ".new";
  ::unlink(next.c_str());
  const FileDescriptor file(
      ::open(next.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
  checked(file.get());
  for (std::size_t written = 0; written < text.size();) {
    written += static_cast<std::size_t>(checked(
        static_cast<int>(::write(file.get(), text.data() + written, text.size() - written))));
  }
  checked(::rename(next.c_str(), path_.c_str()));
}

}  // namespace zephlin
