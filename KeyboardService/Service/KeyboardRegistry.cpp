#include "KeyboardService/Service/KeyboardRegistry.h"

#include <algorithm>

#include "KeyboardService/Protocol/Errors.h"

namespace zephlin {

std::string countedKeyboards(std::size_t count) {
  return std::to_string(count) + (count == 1 ? " keyboard" : " keyboards");
}

void KeyboardRegistry::keyboardAppeared(KeyboardBus& bus, BusHandle handle,
                                        const KeyboardDescription& description) {
  const RegistryID registryID{nextRegistryID_++};
  entries_.emplace(registryID, Entry{{registryID, description, {}}, {&bus, handle}, {}});
  log_("keyboard " + toText(registryID) + " plugged: " + inQuotes(description.product) + ", " +
       printable(description.transport));
  appeared_(registryID);
}

void KeyboardRegistry::keyboardDisappeared(KeyboardBus& bus, BusHandle handle) {
  if (const auto registryID = find({&bus, handle})) {
    entries_.erase(*registryID);
    log_("keyboard " + toText(*registryID) + " pulled");
  }
}

void KeyboardRegistry::propertiesDropped(KeyboardBus& bus, BusHandle handle) {
  if (const auto registryID = find({&bus, handle})) {
    entries_.at(*registryID).properties.clear();
  }
}

std::vector<Keyboard> KeyboardRegistry::list(const Matching& matching) const {
  std::vector<Keyboard> keyboards;
  for (const auto& [registryID, entry] : entries_) {
    if (matching.matches(entry.keyboard)) {
      keyboards.push_back(entry.keyboard);
    }
  }
  return keyboards;
}

std::vector<KeyboardValue> KeyboardRegistry::get(const Matching& matching,
                                                 std::string_view key) const {
  std::vector<KeyboardValue> values;
  for (const auto& [registryID, entry] : entries_) {
    if (!matching.matches(entry.keyboard)) {
      continue;
    }
    const auto property = entry.properties.find(key);
    values.push_back({registryID, property == entry.properties.end()
                                      ? std::nullopt
                                      : std::optional(property->second)});
  }
  return values;
}

std::vector<RegistryID> KeyboardRegistry::set(const Matching& matching,
                                              const PropertySet& properties) {
  std::vector<Change> changes = plan(matching, properties);
  apply(changes);
  std::vector<RegistryID> changed;
  for (Change& change : changes) {
    change.entry->properties = std::move(change.after);
    changed.push_back(change.entry->keyboard.registryID);
  }
  return changed;
}

std::vector<KeyboardRegistry::Change> KeyboardRegistry::plan(const Matching& matching,
                                                             const PropertySet& properties) {
  std::vector<Change> changes;
  for (auto& [registryID, entry] : entries_) {
    if (!matching.matches(entry.keyboard)) {
      continue;
    }
    PropertySet after = properties;
    after.insert(entry.properties.begin(), entry.properties.end());
    if (after.size() - after.count(capsLockDelayKey) > maximumPropertiesOfAKeyboard) {
      throw RequestError("keyboard " + toText(registryID) + " would have more than " +
                         std::to_string(maximumPropertiesOfAKeyboard) +
                         " properties; nothing is changed; set only properties that it has");
    }
    changes.push_back({&entry, std::move(after)});
  }
  return changes;
}

void KeyboardRegistry::apply(const std::vector<Change>& changes) {
  for (std::size_t done = 0; done < changes.size(); ++done) {
    const auto& [entry, after] = changes[done];
    if (after == entry->properties) {
      continue;
    }
    try {
      entry->origin.bus->applyProperties(entry->origin.handle, after);
    } catch (const RequestError& error) {
      throw RequestError("keyboard " + toText(entry->keyboard.registryID) +
                         " refused: " + printable(error.what()) + rollBack(changes, done));
    }
  }
}

/// Undoes the first `count` changes, the last one first, and says how that went.
std::string KeyboardRegistry::rollBack(const std::vector<Change>& changes, std::size_t count) {
  std::string stuck;
  while (count > 0) {
    const auto& [entry, after] = changes[--count];
    if (after == entry->properties) {
      continue;
    }
    try {
      entry->origin.bus->applyProperties(entry->origin.handle, entry->properties);
    } catch (const RequestError&) {
      stuck += ' ' + toText(entry->keyboard.registryID);
    }
  }
  return stuck.empty() ? "; nothing is changed"
                       : "; could not be undone on" + stuck + ", replug these keyboards";
}

std::optional<KeyboardRegistry::Origin> KeyboardRegistry::origin(RegistryID registryID) const {
  const auto entry = entries_.find(registryID);
  return entry == entries_.end() ? std::nullopt : std::optional(entry->second.origin);
}

std::optional<RegistryID> KeyboardRegistry::find(const Origin& origin) const {
  const auto found = std::find_if(entries_.begin(), entries_.end(),
                                  [&](const auto& each) { return each.second.origin == origin; });
  return found == entries_.end() ? std::nullopt : std::optional(found->first);
}

}  // namespace zephlin
