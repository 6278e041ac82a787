#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QCloseEvent>
#include <QMessageBox>
#include <QWindow>
#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "Tests/Contract/ContractDesktop.h"
#include "Tests/Contract/LinuxShownWindow.h"
#include "Tests/Support/FakeLogind.h"
#include "Tests/Support/FakePanel.h"
#include "Tests/Support/FakeService.h"
#include "Tests/Support/Files.h"
#include "Tests/Support/PrivateDesktop.h"
#include "Tests/Support/QtLoop.h"
#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Support/TrayItem.h"

namespace zephlin::contract {
namespace {

/// Empty folders for the user's files, which the environment names from then on.
class UserFolders {
 public:
  UserFolders() {
    ::setenv("XDG_CONFIG_HOME", folder_.file("configuration").c_str(), 1);
    ::setenv("XDG_CONFIG_DIRS", folder_.file("system").c_str(), 1);
    std::filesystem::create_directory(folder_.file("runtime"));
    std::filesystem::permissions(folder_.file("runtime"), std::filesystem::perms(0700));
    ::setenv("XDG_RUNTIME_DIR", folder_.file("runtime").c_str(), 1);
  }

  [[nodiscard]] std::string autostart() const { return folder_.file("configuration/autostart"); }
  [[nodiscard]] std::string defaults() const {
    return folder_.file("configuration/zephlin/defaults.json");
  }

 private:
  test::TemporaryDirectory folder_;
};

/// A label as a panel shows it: an underscore marks a shortcut, two are one
/// (com.canonical.dbusmenu).
std::string withoutMnemonic(const std::string& label) {
  std::string shown;
  for (std::size_t index = 0; index < label.size(); ++index) {
    if (label[index] == '_') {
      ++index;
    }
    shown += label.substr(index, 1);
  }
  return shown;
}

std::string keyEquivalentOf(const test::MenuEntry& entry) {
  QString keys = QString::fromStdString(entry.shortcut());
  return keys.replace("Control", "Command").replace('+', '-').toStdString();
}

/// Whether any pixel is not transparent.
bool isVisible(const test::TrayPicture& picture) {
  constexpr qsizetype bytesPerPixel = 4;
  for (qsizetype alpha = 0; alpha < picture.pixels.size(); alpha += bytesPerPixel) {
    if (picture.pixels[alpha] != 0) {
      return true;
    }
  }
  return false;
}

/// What a panel shows of an item that it knows over D-Bus.
std::vector<ShownMenuItem> panelMenuItems(test::TrayItem& item) {
  std::vector<ShownMenuItem> items;
  for (const test::MenuEntry& entry : item.entries()) {
    items.push_back({.title = withoutMnemonic(entry.label()),
                     .isSeparator = entry.isSeparator(),
                     .isEnabled = entry.isEnabled(),
                     .isChecked = entry.isChecked(),
                     .keyEquivalent = keyEquivalentOf(entry)});
  }
  return items;
}

/// False where the menu has no such entry.
bool choosePanelMenuItem(test::TrayItem& item, const std::string& title) {
  for (const test::MenuEntry& entry : item.entries()) {
    if (withoutMnemonic(entry.label()) == title) {
      item.click(entry.id);
      return true;
    }
  }
  return false;
}

/// Whether there is anything to be seen.
bool hasPanelImage(test::TrayItem& item) {
  const auto pictures = item.pictures();
  return !item.text("IconName").empty() || std::any_of(pictures.begin(), pictures.end(), isVisible);
}

using test::PrivateDesktop;
using test::PrivateXServer;

/// GoogleTest owns it.
PrivateDesktop* const privateDesktop =
    new PrivateDesktop(PrivateDesktop::SessionBus::Present, PrivateDesktop::Application::Absent);
[[maybe_unused]] const auto* const environment = testing::AddGlobalTestEnvironment(privateDesktop);

std::unique_ptr<Platform> makePlatformWithoutArguments() {
  static int count = 1;
  static char name[] = "Zephlin";
  static char* arguments[] = {name, nullptr};
  return makePlatform(count, arguments);
}

constexpr const char* servicePath = "/run/zephlin/hidd.sock";

class LinuxContractDesktop final : public ContractDesktop {
 public:
  LinuxContractDesktop() { startPlatform(); }
  LinuxContractDesktop(const LinuxContractDesktop&) = delete;
  LinuxContractDesktop& operator=(const LinuxContractDesktop&) = delete;
  ~LinuxContractDesktop() override { releaseLock(); }

  Platform& platform() override { return *platform_; }
  void restartPlatform() override {
    stopPlatform();
    startPlatform();
  }

  bool runUntil(const std::function<bool()>& condition) override {
    return test::eventually(condition);
  }
  void runFor(double seconds) override {
    test::runLoopFor(std::chrono::milliseconds(static_cast<int>(seconds * 1000)));
  }
  double monotonicSeconds() override {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
  }
  void letTimePass(double seconds) override {
    std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
  }

  void plugKeyboard() override;
  void sleepAndWake() override {
    // It listens from the event loop's next turn on.
    runFor(0);
    logind_->prepareForSleep(true);
    logind_->prepareForSleep(false);
  }
  void pressCapsLock() override { privateDesktop->xServer().press(PrivateXServer::capsLock); }
  void releaseCapsLock() override { privateDesktop->xServer().release(PrivateXServer::capsLock); }

  bool openMenu() override;
  std::vector<ShownMenuItem> menuItems() override { return panelMenuItems(shownItem()); }
  bool chooseMenuItem(const std::string& title) override {
    return choosePanelMenuItem(shownItem(), title);
  }
  void closeMenu() override {}
  std::string statusToolTip() override { return shownItem().toolTip(); }
  bool isStatusImageShown() override { return hasPanelImage(shownItem()); }

  std::vector<ShownAlert> alerts() override { return shownAlerts(); }
  void dismissAlert() override {
    qobject_cast<QMessageBox*>(QApplication::activeModalWidget())->buttons().front()->click();
  }
  bool isWindowShown() override { return contract::shownWindow(windowTitle) != nullptr; }
  std::vector<std::string> windowTexts() override {
    return labelTexts(*contract::shownWindow(windowTitle));
  }
  bool pressButton(const std::string& title) override {
    return contract::pressButton(*contract::shownWindow(windowTitle), title);
  }
  void closeWindow() override {
    QCloseEvent event;
    QApplication::sendEvent(contract::shownWindow(windowTitle)->windowHandle(), &event);
  }

  ShownWindow shownWindow(const std::string& title) override {
    QWidget* const window = contract::shownWindow(title);
    return window == nullptr ? ShownWindow() : readBack(*window);
  }
  // Only a font whose digits have several widths would tell.
  [[nodiscard]] bool tellsDigitWidths() const override { return false; }
  void setDark(bool isDark) override {
    QApplication::setPalette(isDark ? QPalette(Qt::black) : QPalette(Qt::white));
  }

  void storeTextInDefaults(const std::string& key, const std::string& text) override {
    test::writeTo(folders_.defaults(), "{\"" + key + "\": \"" + text + "\"}");
  }
  void spoilDefaults() override { test::writeTo(folders_.defaults(), "{\"key\": tru"); }
  void switchLoginItemOff() override {
    std::ofstream(folders_.autostart() + "/com.quorvenel.zephlin.desktop", std::ios::app)
        << "Hidden=true\n";
  }
  void makeLoginItemsFail() override { test::writeTo(folders_.autostart(), "no folder"); }

 private:
  void startPlatform();
  void stopPlatform();
  void releaseLock();
  test::TrayItem& shownItem();

  UserFolders folders_;
  std::optional<test::FakeService> service_;
  std::unique_ptr<Platform> platform_;
  std::optional<test::FakeLogind> logind_;
  std::optional<test::FakePanel> panel_;
  std::optional<test::TrayItem> shownItem_;
};

void LinuxContractDesktop::startPlatform() {
  platform_ = makePlatformWithoutArguments();
  // In a /run that only this program has.
  std::filesystem::create_directories(std::filesystem::path(servicePath).parent_path());
  std::filesystem::remove(servicePath);
  service_.emplace(servicePath);
  logind_.emplace();
  panel_.emplace();
}

void LinuxContractDesktop::stopPlatform() {
  shownItem_.reset();
  panel_.reset();
  logind_.reset();
  service_.reset();
  platform_.reset();
}

void LinuxContractDesktop::plugKeyboard() {
  // Lets an observer that has just come or gone do so first.
  runFor(0.02);
  if (!service_->hasClient() || service_->isAwaited()) {
    EXPECT_TRUE(service_->acceptSubscription());
  }
  service_->send("{\"appeared\":\"100000001\"}\n");
}

/// Leaves the lock of the X server's keyboard as it was found.
void LinuxContractDesktop::releaseLock() {
  if ((platform_->eventTaps().currentModifierFlags() & modifierCapsLock) != 0) {
    privateDesktop->xServer().tap(PrivateXServer::capsLock);
  }
  stopPlatform();
}

test::TrayItem& LinuxContractDesktop::shownItem() {
  if (!shownItem_) {
    test::eventually([this] { return panel_->registrations() > 0; });
    shownItem_.emplace(panel_->item());
  }
  return *shownItem_;
}

bool LinuxContractDesktop::openMenu() {
  shownItem().aboutToShow();
  return true;
}

}  // namespace

std::unique_ptr<ContractDesktop> makeContractDesktop() {
  return std::make_unique<LinuxContractDesktop>();
}

}  // namespace zephlin::contract
