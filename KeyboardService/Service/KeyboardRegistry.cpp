#include "KeyboardService/Service/KeyboardRegistry.h"

#include <algorithm>

#include "KeyboardService/Protocol/Errors.h"
#include "KeyboardService/Service/PropertyStore.h"

namespace zephlin {
namespace {

using Kind = KeyboardState::Kind;
using Clock = std::chrono::steady_clock;

PropertySet merged(const PropertySet& properties, const PropertySet& former) {
  PropertySet result = properties;
  result.insert(former.begin(), former.end());
  return result;
}

bool isInForce(const KeyboardState& state, const PropertySet& properties) {
  return state.kind == Kind::InForce || (state.kind == Kind::Default && !capsLockDelay(properties));
}

}  // namespace

std::string countedKeyboards(std::size_t count) {
  return std::to_string(count) + (count == 1 ? " keyboard" : " keyboards");
}

void KeyboardRegistry::keyboardAppeared(KeyboardBus& bus, BusHandle handle,
                                        const KeyboardDescription& description,
                                        const std::string& identity) {
  const RegistryID registryID{nextRegistryID_++};
  Entry entry;
  entry.keyboard = {registryID, description, entry.state.text};
  entry.origin = {&bus, handle};
  entry.identity = identity;
  Entry& added = entries_.emplace(registryID, std::move(entry)).first->second;
  log_.write("keyboard " + toText(registryID) + " plugged: " + inQuotes(description.product) +
             ", " + printable(description.transport));
  putBack(added);
  appeared_(registryID);
}

void KeyboardRegistry::putBack(Entry& entry) {
  if (store_ == nullptr || entry.identity.empty()) {
    return;
  }
  const PropertySet properties = store_->take(entry.identity);
  if (!properties.empty()) {
    log_.write("keyboard " + toText(entry.keyboard.registryID) + " gets back its properties");
    apply(entry, properties);
  }
}

void KeyboardRegistry::apply(Entry& entry, const PropertySet& properties) {
  entry.properties = properties;
  entry.isGivenUp = false;
  entry.origin.bus->applyProperties(entry.origin.handle, properties);
  startCheck(entry);
}

void KeyboardRegistry::keyboardDisappeared(KeyboardBus& bus, BusHandle handle) {
  if (const auto registryID = find({&bus, handle})) {
    entries_.erase(*registryID);
    log_.write("keyboard " + toText(*registryID) + " pulled");
    keepProperties();
    reported_();
  }
}

void KeyboardRegistry::stateChanged(KeyboardBus& bus, BusHandle handle,
                                    const KeyboardState& state) {
  if (Entry* const entry = entryOf(bus, handle)) {
    entry->isGivenUp = false;
    setState(*entry, state);
  }
}

void KeyboardRegistry::checked(KeyboardBus& bus, BusHandle handle) {
  Entry* const entry = entryOf(bus, handle);
  if (entry != nullptr && entry->unanswered > 0) {
    --entry->unanswered;
    entry->lastChecked = Clock::now();
    reported_();
  }
}

void KeyboardRegistry::propertiesDropped(KeyboardBus& bus, BusHandle handle) {
  if (Entry* const entry = entryOf(bus, handle)) {
    entry->properties.clear();
    keepProperties();
  }
}

KeyboardRegistry::IDs KeyboardRegistry::matching(const Matching& matching) const {
  IDs result;
  for (const auto& [registryID, entry] : entries_) {
    if (matching.matches(entry.keyboard)) {
      result.push_back(registryID);
    }
  }
  return result;
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
    const bool isGiven = property != entry.properties.end() &&
                         (key != capsLockDelayKey || isInForce(entry.state, entry.properties));
    values.push_back({registryID, isGiven ? std::optional(property->second) : std::nullopt});
  }
  return values;
}

std::size_t KeyboardRegistry::set(const IDs& keyboards, const PropertySet& properties) {
  std::vector<std::pair<Entry*, PropertySet>> changes;
  for (const RegistryID registryID : keyboards) {
    Entry& entry = entries_.at(registryID);
    PropertySet after = merged(properties, entry.properties);
    if (after.size() - after.count(capsLockDelayKey) > maximumPropertiesOfAKeyboard) {
      throw RequestError("keyboard " + toText(registryID) + " would have more than " +
                         std::to_string(maximumPropertiesOfAKeyboard) +
                         " properties; nothing is changed; set only properties that it has");
    }
    try {
      entry.origin.bus->requireCarriable(after);
    } catch (const RequestError& error) {
      throw RequestError("keyboard " + toText(registryID) + " refused: " + error.what() +
                         "; nothing is changed");
    }
    if (after != entry.properties) {
      changes.emplace_back(&entry, std::move(after));
    }
  }
  for (const auto& [entry, after] : changes) {
    apply(*entry, after);
  }
  if (!changes.empty()) {
    keepProperties();
  }
  return changes.size();
}

SetResponse KeyboardRegistry::outcome(const IDs& keyboards, const PropertySet& properties) const {
  SetResponse response;
  for (const RegistryID registryID : keyboards) {
    const auto found = entries_.find(registryID);
    if (found == entries_.end()) {
      continue;  // It was pulled meanwhile.
    }
    const Entry& entry = found->second;
    if (merged(properties, entry.properties) != entry.properties) {
      response.unset.push_back({registryID, "its properties were changed again meanwhile"});
    } else if (properties.contains(capsLockDelayKey) && !isInForce(entry.state, entry.properties)) {
      response.unset.push_back({registryID, entry.state.text});
    } else {
      response.keyboards.push_back(registryID);
    }
  }
  return response;
}

void KeyboardRegistry::check(const IDs& keyboards) {
  for (const RegistryID registryID : keyboards) {
    Entry& entry = entries_.at(registryID);
    if (entry.unanswered == 0 && entry.state.kind != Kind::Default &&
        Clock::now() - entry.lastChecked > freshness_) {
      startCheck(entry);
    }
  }
}

void KeyboardRegistry::startCheck(Entry& entry) {
  ++entry.unanswered;
  entry.origin.bus->check(entry.origin.handle);
}

bool KeyboardRegistry::isSettled(const IDs& keyboards) const {
  return std::all_of(keyboards.begin(), keyboards.end(), [this](RegistryID registryID) {
    const auto found = entries_.find(registryID);
    return found == entries_.end() || found->second.isGivenUp ||
           (found->second.unanswered == 0 && found->second.state.kind != Kind::Settling);
  });
}

void KeyboardRegistry::giveUpOn(const IDs& keyboards) {
  for (const RegistryID registryID : keyboards) {
    const auto found = entries_.find(registryID);
    if (found != entries_.end() && found->second.unanswered > 0) {
      found->second.isGivenUp = true;
      setState(found->second, {Kind::NotInForce, "does not answer"});
    }
  }
}

void KeyboardRegistry::setState(Entry& entry, const KeyboardState& state) {
  if (entry.state != state) {
    entry.state = state;
    entry.keyboard.state = state.text;
    logTrouble(entry);
    reported_();
  }
}

/// Each change for the worse or the better is logged once, not each time that somebody asks.
void KeyboardRegistry::logTrouble(Entry& entry) {
  const auto& [kind, text] = entry.state;
  const std::string keyboard = "keyboard " + toText(entry.keyboard.registryID);
  std::string line;
  if (kind == Kind::NotInForce && text != entry.loggedTrouble) {
    entry.loggedTrouble = text;
    line = keyboard + " is not in force: " + printable(text);
  } else if (kind == Kind::InForce && !entry.loggedTrouble.empty()) {
    entry.loggedTrouble.clear();
    line = keyboard + " is in force again: " + printable(text);
  }
  if (!line.empty()) {
    log_.during(keyboard, [&] { log_.write(line); });
  }
}

void KeyboardRegistry::keepProperties() const {
  if (store_ == nullptr) {
    return;
  }
  PropertyStore::Properties properties;
  for (const auto& [registryID, entry] : entries_) {
    if (!entry.identity.empty() && !entry.properties.empty()) {
      properties.emplace(entry.identity, entry.properties);
    }
  }
  store_->keep(properties);
}

KeyboardRegistry::Entry* KeyboardRegistry::entryOf(KeyboardBus& bus, BusHandle handle) {
  const auto registryID = find({&bus, handle});
  return registryID ? &entries_.at(*registryID) : nullptr;
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
