#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "KeyboardService/Protocol/Keyboard.h"
#include "KeyboardService/Protocol/Messages.h"
#include "KeyboardService/Protocol/Properties.h"
#include "KeyboardService/Service/KeyboardBus.h"
#include "KeyboardService/Service/Log.h"

namespace zephlin {

class PropertyStore;

/// "1 keyboard", "2 keyboards".
std::string countedKeyboards(std::size_t count);

/// The keyboards of all buses, in the order in which they appeared. Each has the properties that
/// were asked for, which go with it, and a state, which says whether it does as they ask. Used on
/// the thread of the event loop only.
class KeyboardRegistry final : public KeyboardBusObserver {
 public:
  /// Where a keyboard comes from.
  struct Origin {
    KeyboardBus* bus = nullptr;
    BusHandle handle{};
    bool operator==(const Origin&) const = default;
  };

  /// The log outlives the registry. `freshness` is for how long a keyboard's state is good once the
  /// keyboard has been asked, so that clients cannot keep keyboards busy with questions.
  explicit KeyboardRegistry(LimitedLog& log, std::chrono::milliseconds freshness = defaultFreshness)
      : log_(log), freshness_(freshness) {}

  /// Has `appeared` called with each keyboard that appears from now on, once it is listed.
  void onAppeared(std::function<void(RegistryID)> appeared) { appeared_ = std::move(appeared); }

  /// Has `reported` called whenever `isSettled` may have another answer.
  void onReported(std::function<void()> reported) { reported_ = std::move(reported); }

  /// Puts back the properties kept in the store as their keyboards appear, and keeps them there
  /// from now on. The store outlives the registry.
  void keepIn(PropertyStore& store) { store_ = &store; }

  void keyboardAppeared(KeyboardBus& bus, BusHandle handle, const KeyboardDescription& description,
                        const std::string& identity) override;
  void keyboardDisappeared(KeyboardBus& bus, BusHandle handle) override;
  void stateChanged(KeyboardBus& bus, BusHandle handle, const KeyboardState& state) override;
  void checked(KeyboardBus& bus, BusHandle handle) override;
  void propertiesDropped(KeyboardBus& bus, BusHandle handle) override;

  using IDs = std::vector<RegistryID>;

  [[nodiscard]] std::size_t size() const { return entries_.size(); }
  [[nodiscard]] IDs matching(const Matching& matching) const;
  [[nodiscard]] std::vector<Keyboard> list(const Matching& matching) const;

  /// The properties asked for, except that the delay of Caps Lock is given only where it is in
  /// force.
  [[nodiscard]] std::vector<KeyboardValue> get(const Matching& matching,
                                               std::string_view key) const;

  /// Asks these keyboards to carry these properties as well as those that they have, and returns
  /// how many of them have been asked for something new. Throws RequestError and changes nothing if
  /// one of them cannot carry them.
  std::size_t set(const IDs& keyboards, const PropertySet& properties);

  /// Which of these keyboards now do as these properties ask, and why the others do not.
  [[nodiscard]] SetResponse outcome(const IDs& keyboards, const PropertySet& properties) const;

  /// Asks these keyboards for their state, except those that were asked a moment ago.
  void check(const IDs& keyboards);

  /// Whether it is known of all these keyboards if they do as asked, with no question open.
  [[nodiscard]] bool isSettled(const IDs& keyboards) const;

  /// Those of these keyboards that have not answered count as not in force until they do.
  void giveUpOn(const IDs& keyboards);

  [[nodiscard]] const KeyboardDescription& description(RegistryID registryID) const {
    return entries_.at(registryID).keyboard.description;
  }
  [[nodiscard]] std::optional<Origin> origin(RegistryID registryID) const;
  [[nodiscard]] std::optional<RegistryID> find(const Origin& origin) const;

 private:
  static constexpr std::chrono::milliseconds defaultFreshness{250};

  struct Entry {
    Keyboard keyboard;
    Origin origin;
    std::string identity;
    PropertySet properties;
    KeyboardState state;
    std::string loggedTrouble;  ///< Why it is not in force, as far as the log says.
    std::size_t unanswered = 0;
    bool isGivenUp = false;
    std::chrono::steady_clock::time_point lastChecked;
  };

  Entry* entryOf(KeyboardBus& bus, BusHandle handle);
  void putBack(Entry& entry);
  static void apply(Entry& entry, const PropertySet& properties);
  static void startCheck(Entry& entry);
  void setState(Entry& entry, const KeyboardState& state);
  void logTrouble(Entry& entry);
  void keepProperties() const;

  LimitedLog& log_;
  std::chrono::milliseconds freshness_;
  std::function<void(RegistryID)> appeared_ = [](RegistryID) {};
  std::function<void()> reported_ = [] {};
  PropertyStore* store_ = nullptr;
  std::uint64_t nextRegistryID_ = 0x100000001;
  std::map<RegistryID, Entry> entries_;
};

}  // namespace zephlin
