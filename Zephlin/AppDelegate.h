#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "Platform/Platform.h"
#include "Zephlin/KeyboardWatcher.h"
#include "Zephlin/TapTestController.h"
#include "ZephlinCore/CapsLockEngine.h"

namespace zephlin {

/// The one object that runs the menu bar application. All of it runs on the main thread, except for
/// the engine's calls, which block: those run one at a time on its work queue and report back. Work
/// that is still under way when the delegate is destroyed does nothing more.
///
/// Launching is in AppDelegateLaunch.cpp, when the override is applied or restored in
/// AppDelegateOverride.cpp, the status item and its menu in AppDelegateStatusItem.cpp.
class AppDelegate : public ApplicationDelegate,
                    public MenuDelegate,
                    public std::enable_shared_from_this<AppDelegate> {
 public:
  /// Must be held by a std::shared_ptr; the platform must outlive it. Starts only the updater.
  explicit AppDelegate(Platform& platform);
  AppDelegate(const AppDelegate&) = delete;
  AppDelegate& operator=(const AppDelegate&) = delete;
  ~AppDelegate() override = default;

  void applicationDidFinishLaunching() override;
  void applicationShouldHandleReopen() override { showTapTest(); }
  void applicationShouldSwitch(bool isOn) override { setEnabled(isOn); }
  void applicationShouldReportStatus(
      std::function<void(const std::string& status)> report) override;

  /// The user's preference; on for a user who has never touched the switch.
  [[nodiscard]] bool isEnabled() const;
  /// Stores the preference and carries it out.
  void setEnabled(bool enabled);
  /// Applies the override and verifies it, if the preference is on. `isRetry` is true only for the
  /// delegate's own retries; any other request resets their count.
  void applyIfEnabled(bool isRetry);
  /// Reads the status and redraws, then calls `completion` if there is one.
  void refreshStatusAsync(std::function<void()> completion);
  /// The state in one line.
  [[nodiscard]] std::string statusDescription() const;

  /// Redraws the status item and the menu's status line from the state.
  void refreshUI();
  void menuNeedsUpdate(Menu& menu) override;

  [[nodiscard]] const std::optional<CapsLockEngine::Status>& cachedStatus() const {
    return cachedStatus_;
  }
  [[nodiscard]] bool lastApplyFailed() const { return lastApplyFailed_; }
  [[nodiscard]] std::int64_t retryAttempts() const { return retryAttempts_; }
  /// Created on first use, then kept.
  TapTestController& tapTest();

 private:
  /// The result of an apply or a restore, with the status that was read afterwards.
  struct EngineResult {
    bool failed = false;
    std::optional<CapsLockEngine::Status> status;
  };
  using Finish = void (AppDelegate::*)(const EngineResult& result);

  void showPreview();
  void writePreviewSnapshot(const std::string& path);
  void registerLoginItemOnFirstLaunch();

  void queueEngineCall(void (CapsLockEngine::*call)() const, const char* failureMessage,
                       Finish finish);
  void finishApply(const EngineResult& result);
  void finishRestore(const EngineResult& result);
  void recordResult(const EngineResult& result, bool isOK);
  void scheduleRetry();

  void setUpStatusItem();
  void toggleEnabled();
  void toggleLoginItem();
  void reapplyNow();
  void showTapTest();
  void showAbout();
  void quit();
  /// A menu's action that does nothing once the delegate is destroyed.
  MenuAction weakAction(void (AppDelegate::*action)());

  Platform& platform_;
  CapsLockEngine engine_;
  std::shared_ptr<Updater> updaterController_;
  std::unique_ptr<SerialQueue> workQueue_;
  std::unique_ptr<StatusItem> statusItem_;
  std::shared_ptr<KeyboardWatcher> watcher_;
  std::optional<CapsLockEngine::Status> cachedStatus_;
  bool lastApplyFailed_ = false;
  std::int64_t retryAttempts_ = 0;
  std::weak_ptr<MenuItem> statusLineItem_;
  UserDefaults& defaults_;
  std::shared_ptr<TapTestController> tapTest_;
};

}  // namespace zephlin
