#include "Platform/Linux/LinuxApplication.h"

#include <QIcon>
#include <QIconEngine>
#include <QLocale>
#include <QMetaObject>
#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <utility>

#include "Platform/Linux/LauncherActions.h"
#include "Platform/Linux/Watching/WindowSystem.h"
#include "Platform/Linux/Windows/ActivationToken.h"

namespace zephlin {

namespace {

/// Qt ends the process if it finds no display, unless it is told not to look for one.
int& withReachableDisplay(int& argc) {
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM") && !isDisplayReachable()) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
  }
  return argc;
}

/// Every option that is no action just starts the application. Qt would use the ones it knows, and
/// end the process at one that it cannot follow.
int& withoutOptions(int& argc) {
  argc = std::min(argc, 1);
  return argc;
}

/// An icon of the desktop's theme, looked up when the first window needs it: Qt reads whole themes
/// to find one.
class ThemeIconEngine final : public QIconEngine {
 public:
  explicit ThemeIconEngine(QString name) : name_(std::move(name)) {}

  void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override {
    icon().paint(painter, rect, Qt::AlignCenter, mode, state);
  }
  QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
    return icon().pixmap(size, mode, state);
  }
  QSize actualSize(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
    return icon().actualSize(size, mode, state);
  }
  QList<QSize> availableSizes(QIcon::Mode mode, QIcon::State state) override {
    return icon().availableSizes(mode, state);
  }
  QString iconName() override { return name_; }
  bool isNull() override { return icon().isNull(); }
  [[nodiscard]] QIconEngine* clone() const override { return new ThemeIconEngine(name_); }

 private:
  [[nodiscard]] QIcon icon() const { return QIcon::fromTheme(name_); }

  QString name_;
};

}  // namespace

LinuxApplication::LinuxApplication(int& argc, char** argv)
    : activationToken_(takeActivationTokenFromEnvironment()),
      launcherAction_(launcherActionIn(argc, argv)),
      application_(withReachableDisplay(withoutOptions(argc)), argv) {
  QApplication::setApplicationName("Zephlin");
  QApplication::setApplicationVersion(ZEPHLIN_VERSION);
  QApplication::setDesktopFileName("com.quorvenel.zephlin");
  QApplication::setWindowIcon(QIcon(new ThemeIconEngine(QApplication::desktopFileName())));
  QApplication::setQuitOnLastWindowClosed(false);
  // Qt takes the direction from its translations, of which Zephlin loads none.
  QApplication::setLayoutDirection(
      QLocale(QLocale::system().uiLanguages().value(0)).textDirection());
}

bool LinuxApplication::isDisplayed() const {
  return QApplication::platformName() != "offscreen";
}

void LinuxApplication::reopen() {
  if (const auto delegate = delegate_.lock()) {
    delegate->applicationShouldHandleReopen();
  }
}

void LinuxApplication::switchFeature(bool isOn) {
  if (const auto delegate = delegate_.lock()) {
    delegate->applicationShouldSwitch(isOn);
  }
}

void LinuxApplication::readStatus(std::function<void(const std::string& status)> report) {
  if (const auto delegate = delegate_.lock()) {
    delegate->applicationShouldReportStatus(std::move(report));
  }
}

void LinuxApplication::setDelegate(std::weak_ptr<ApplicationDelegate> delegate) {
  delegate_ = std::move(delegate);
}

void LinuxApplication::setMainMenu(std::shared_ptr<Menu> menu) {
  services_.setMainMenu(std::move(menu));
}

void LinuxApplication::run() {
  QMetaObject::invokeMethod(
      &application_,
      [this] {
        if (const auto delegate = delegate_.lock()) {
          delegate->applicationDidFinishLaunching();
        }
        services_.hasLaunched();
      },
      Qt::QueuedConnection);
  QApplication::exec();
  services_.loopHasEnded();
}

void LinuxApplication::terminate() {
  isTerminating_ = true;
  QApplication::exit(0);
}

std::optional<std::string> LinuxProcessInfo::environmentVariable(const std::string& name) const {
  const char* const value = std::getenv(name.c_str());
  return value == nullptr ? std::nullopt : std::optional<std::string>(value);
}

std::string LinuxProcessInfo::mainBundlePath() const {
  std::error_code error;
  return std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
}

}  // namespace zephlin
