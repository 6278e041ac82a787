// AppDelegate, launching: the preview mode and the login item of the first launch.

#include <filesystem>
#include <fstream>
#include <system_error>

#include "Zephlin/AppDelegate.h"
#include "Zephlin/LoginItem.h"

namespace zephlin {

namespace {

constexpr const char* didSetupLoginItemKey = "didSetupLoginItem";
constexpr const char* previewVariable = "ZEPHLIN_PREVIEW";
constexpr const char* previewOutputVariable = "ZEPHLIN_PREVIEW_OUT";
constexpr const char* tapTestPreview = "taptest";
/// Time for the window to be drawn.
constexpr std::chrono::seconds snapshotDelay{1};

}  // namespace

AppDelegate::AppDelegate(Platform& platform)
    : platform_(platform),
      engine_("/usr/bin/hidutil"),
      updaterController_(platform.makeStartedUpdater()),
      workQueue_(platform.dispatch().makeSerialQueue("com.quorvenel.zephlin.engine")),
      defaults_(platform.standardUserDefaults()) {}

void AppDelegate::applicationDidFinishLaunching() {
  setUpStatusItem();
  watcher_ = std::make_shared<KeyboardWatcher>(platform_, [weak = weak_from_this()] {
    if (const auto self = weak.lock()) {
      self->applyIfEnabled(false);
    }
  });
  watcher_->start();
  if (isEnabled()) {
    applyIfEnabled(false);
  } else {
    refreshStatusAsync({});
  }
  showPreview();
  registerLoginItemOnFirstLaunch();
}

void AppDelegate::showPreview() {
  const ProcessInfo& process = platform_.processInfo();
  if (process.environmentVariable(previewVariable) != tapTestPreview) {
    return;
  }
  tapTest().show();
  if (const auto path = process.environmentVariable(previewOutputVariable)) {
    platform_.dispatch().mainQueue()->postAfter(snapshotDelay,
                                                [weak = weak_from_this(), path = *path] {
                                                  if (const auto self = weak.lock()) {
                                                    self->writePreviewSnapshot(path);
                                                    self->platform_.application().terminate();
                                                  }
                                                });
  }
}

// A snapshot that cannot be made or written is only a missing file.
void AppDelegate::writePreviewSnapshot(const std::string& path) {
  Window* const window = tapTest().window();
  std::error_code error;
  // Opening a pipe waits for its reader.
  if (window == nullptr || std::filesystem::is_fifo(path, error)) {
    return;
  }
  if (const auto png = window->contentAsPng()) {
    std::ofstream(path, std::ios::binary) << *png;
  }
}

void AppDelegate::registerLoginItemOnFirstLaunch() {
  if (!LoginItem::runsFromApplicationBundle(platform_) ||
      defaults_.boolForKey(didSetupLoginItemKey)) {
    return;
  }
  try {
    LoginItem::setEnabled(platform_, true);
    defaults_.setBoolean(didSetupLoginItemKey, true);
  } catch (const std::exception& error) {
    platform_.systemLog()->log("Zephlin: could not register login item: " +
                               localizedDescription(error));
  }
}

}  // namespace zephlin
