#pragma once

#include <unistd.h>

#include <exception>
#include <stdexcept>

namespace zephlin {

/// The effective user for the length of a scope, as root only.
class EffectiveUser {
 public:
  explicit EffectiveUser(uid_t user) : former_(::geteuid()) {
    if (former_ == 0 && ::seteuid(user) != 0) {
      throw std::runtime_error("cannot change the effective user");
    }
  }
  EffectiveUser(const EffectiveUser&) = delete;
  EffectiveUser& operator=(const EffectiveUser&) = delete;
  ~EffectiveUser() {
    if (::seteuid(former_) != 0) {
      std::terminate();
    }
  }

 private:
  uid_t former_;
};

}  // namespace zephlin
