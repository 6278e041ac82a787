#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <utility>
#include <vector>

#include "Platform/HidDevices.h"

namespace zephlin {

/// Callbacks that each live as long as an Observation, which may end during a call and may outlive
/// the list. `Record` is what the observer asked for.
template <typename Record, typename... Arguments>
class ObserverList {
 public:
  using Callback = std::function<void(Arguments...)>;

  std::unique_ptr<Observation> add(Record record, Callback callback) {
    const std::uint64_t key = entries_->nextKey++;
    entries_->byKey.emplace(key,
                            std::make_shared<Entry>(Entry{std::move(record), std::move(callback)}));
    return std::make_unique<Registration>(entries_, key);
  }

  /// Work that calls, in the order in which they were added, those of the present observers whose
  /// record the predicate accepts and that are still there when it runs.
  template <typename Predicate>
  [[nodiscard]] std::function<void()> notificationIf(Predicate accepts,
                                                     Arguments... arguments) const {
    return [entries = entries_, keys = keys(), accepts, arguments...] {
      for (const std::uint64_t key : keys) {
        const auto found = entries->byKey.find(key);
        if (found == entries->byKey.end() || !accepts(found->second->record)) {
          continue;
        }
        const std::shared_ptr<Entry> entry = found->second;
        entry->callback(arguments...);
      }
    };
  }

  /// Does so at once.
  template <typename Predicate>
  void notifyIf(Predicate accepts, Arguments... arguments) const {
    notificationIf(accepts, arguments...)();
  }

  [[nodiscard]] std::size_t count() const { return entries_->byKey.size(); }
  [[nodiscard]] std::vector<Record> records() const {
    std::vector<Record> records;
    for (const auto& [key, entry] : entries_->byKey) {
      records.push_back(entry->record);
    }
    return records;
  }

 private:
  struct Entry {
    Record record;
    Callback callback;
  };
  struct Entries {
    std::uint64_t nextKey = 0;
    std::map<std::uint64_t, std::shared_ptr<Entry>> byKey;
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
