#include "Platform/Simulated/SimulatedApplication.h"

namespace zephlin {

namespace {

/// Depth first, as a desktop searches.
std::shared_ptr<MenuItem> itemWithKeyEquivalent(const Menu& menu, const std::string& key,
                                                ModifierFlags flags) {
  for (const auto& item : menu.items()) {
    if (item->submenu) {
      if (auto found = itemWithKeyEquivalent(*item->submenu, key, flags)) {
        return found;
      }
    }
    const bool matches = !key.empty() && item->keyEquivalent == key && item->isEnabled &&
                         item->keyEquivalentModifierMask == flags;
    if (matches) {
      return item;
    }
  }
  return nullptr;
}

}  // namespace

void SimulatedApplication::setDelegate(std::weak_ptr<ApplicationDelegate> delegate) {
  delegate_ = std::move(delegate);
}

void SimulatedApplication::run() {
  postLaunch();
  while (!hasTerminated() && loop_.step()) {
  }
}

void SimulatedApplication::launch() {
  postLaunch();
  loop_.runUntilIdleNow();
}

void SimulatedApplication::postLaunch() {
  loop_.schedule(loop_.now(), VirtualLoop::Lane::Main, [this] {
    if (const auto launched = delegate()) {
      launched->applicationDidFinishLaunching();
    }
  });
}

void SimulatedApplication::reopen() {
  if (const auto reopened = delegate()) {
    reopened->applicationShouldHandleReopen();
  }
}

std::optional<std::string> SimulatedApplication::pressKeyEquivalent(const std::string& key,
                                                                    ModifierFlags flags) {
  const auto item = mainMenu_ ? itemWithKeyEquivalent(*mainMenu_, key, flags) : nullptr;
  if (!item) {
    return std::nullopt;
  }
  perform(item->action);
  return item->title;
}

void SimulatedApplication::perform(const MenuAction& action) {
  const auto* const responder = std::get_if<ResponderAction>(&action);
  if (responder == nullptr) {
    performAction(action);
  } else if (*responder == ResponderAction::Terminate) {
    terminate();
  } else {
    responderActions_.push_back(*responder);
  }
}

}  // namespace zephlin
