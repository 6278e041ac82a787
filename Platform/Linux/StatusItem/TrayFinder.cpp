#include "Platform/Linux/StatusItem/TrayFinder.h"

#include <chrono>
#include <utility>

namespace zephlin {

namespace {

/// How long a panel that has brought up its XEmbed tray may take for its StatusNotifier host. Much
/// more than it takes even while a session starts, and not more than a user would wonder about.
constexpr std::chrono::seconds timeout{3};

}  // namespace

TrayFinder::TrayFinder(const XEmbedTray& xembed, std::function<void(TrayKind)> found)
    : xembed_(xembed),
      found_(std::move(found)),
      host_([this] { decide(TrayKind::StatusNotifier); }) {
  timeout_.setSingleShot(true);
  QObject::connect(&timeout_, &QTimer::timeout, &timeout_, [this] {
    if (xembed_.isThere()) {
      decide(TrayKind::XEmbed);
    }
  });
  if (xembed_.isThere()) {
    xembedTrayCame();
  }
}

void TrayFinder::xembedTrayCame() {
  if (found_) {
    timeout_.start(host_.isPossible() ? timeout : std::chrono::seconds(0));
  }
}

void TrayFinder::decide(TrayKind kind) {
  timeout_.stop();
  if (const auto found = std::exchange(found_, nullptr)) {
    found(kind);
  }
}

}  // namespace zephlin
