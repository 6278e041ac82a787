#pragma once

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

/// "1 keyboard", "2 keyboards".
std::string countedKeyboards(std::size_t count);

/// The keyboards of all buses, in the order in which they appeared, and their properties, which
/// disappear with them. Used on the thread of the event loop only.
class KeyboardRegistry final : public KeyboardBusObserver {
 public:
  /// Where a keyboard comes from.
  struct Origin {
    KeyboardBus* bus = nullptr;
    BusHandle handle{};
    bool operator==(const Origin&) const = default;
  };

  explicit KeyboardRegistry(Log log) : log_(std::move(log)) {}

  /// Has `appeared` called with each keyboard that appears from now on, once it is listed.
  void onAppeared(std::function<void(RegistryID)> appeared) { appeared_ = std::move(appeared); }

  void keyboardAppeared(KeyboardBus& bus, BusHandle handle,
                        const KeyboardDescription& description) override;
  void keyboardDisappeared(KeyboardBus& bus, BusHandle handle) override;
  void propertiesDropped(KeyboardBus& bus, BusHandle handle) override;

  [[nodiscard]] std::size_t size() const { return entries_.size(); }
  [[nodiscard]] std::vector<Keyboard> list(const Matching& matching) const;
  [[nodiscard]] std::vector<KeyboardValue> get(const Matching& matching,
                                               std::string_view key) const;

  /// Sets all properties on all matching keyboards and returns these keyboards. Throws RequestError
  /// and changes nothing if one refuses; the text names those on which that could not be undone.
  std::vector<RegistryID> set(const Matching& matching, const PropertySet& properties);

  [[nodiscard]] std::optional<Origin> origin(RegistryID registryID) const;
  [[nodiscard]] std::optional<RegistryID> find(const Origin& origin) const;

 private:
  struct Entry {
    Keyboard keyboard;
    Origin origin;
    PropertySet properties;
  };

  struct Change {
    Entry* entry = nullptr;
    PropertySet after;
  };

  [[nodiscard]] std::vector<Change> plan(const Matching& matching, const PropertySet& properties);
  static void apply(const std::vector<Change>& changes);
  static std::string rollBack(const std::vector<Change>& changes, std::size_t count);

  Log log_;
  std::function<void(RegistryID)> appeared_ = [](RegistryID) {};
  std::uint64_t nextRegistryID_ = 0x100000001;
  std::map<RegistryID, Entry> entries_;
};

}  // namespace zephlin
