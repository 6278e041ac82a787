#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <utility>
#include <vector>

#include "Platform/Observation.h"

namespace zephlin {

/// Callbacks that each live as long as an Observation, which may end during a call and may outlive
/// the list.
template <typename... Arguments>
class ObserverList {
 public:
  using Callback = std::function<void(Arguments...)>;

  std::unique_ptr<Observation> add(Callback callback) {
    const std::uint64_t key = entries_->nextKey++;
    entries_->byKey.emplace(key, std::make_shared<Callback>(std::move(callback)));
    return std::make_unique<Registration>(entries_, key);
  }

  /// Work that calls the present observers, those that still exist when it runs, in the order in
  /// which they were added.
  [[nodiscard]] std::function<void()> notification(Arguments... arguments) const {
    return [entries = entries_, keys = keys(), arguments...] {
      for (const std::uint64_t key : keys) {
        const auto found = entries->byKey.find(key);
        if (found != entries->byKey.end()) {
          const std::shared_ptr<Callback> callback = found->second;
          (*callback)(arguments...);
        }
      }
    };
  }

  [[nodiscard]] std::size_t count() const { return entries_->byKey.size(); }

 private:
  struct Entries {
    std::uint64_t nextKey = 0;
    std::map<std::uint64_t, std::shared_ptr<Callback>> byKey;
  };
  class Registration final : public Observation {
   public:
    Registration(std::weak_ptr<Entries> entries, std::uint64_t key)
        : entries_(std::move(entries)), key_(key) {}
    Registration(const Registration&) = delete;
    Registration& operator=(const Registration&) = delete;
    ~Registration() override {
      if (const auto entries = entries_.lock()) {
        entries->byKey.erase(key_);
      }
    }

   private:
    std::weak_ptr<Entries> entries_;
    std::uint64_t key_;
  };

  [[nodiscard]] std::vector<std::uint64_t> keys() const {
    std::vector<std::uint64_t> keys;
    for (const auto& [key, entry] : entries_->byKey) {
      keys.push_back(key);
    }
    return keys;
  }

  std::shared_ptr<Entries> entries_ = std::make_shared<Entries>();
};

}  // namespace zephlin
