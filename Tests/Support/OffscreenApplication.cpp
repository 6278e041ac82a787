#include <gtest/gtest.h>

#include <QApplication>
#include <QTemporaryDir>
#include <memory>

namespace zephlin::test {
namespace {

/// Qt's application without a display, for as long as the tests run. Files and buses of the
/// session that the tests are started in are out of reach.
class OffscreenApplication final : public testing::Environment {
 public:
  void SetUp() override {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qunsetenv("QT_SCALE_FACTOR");
    qputenv("XDG_RUNTIME_DIR", folder_.path().toUtf8());
    // libdbus reads it once in a process.
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=" + folder_.filePath("system-bus").toUtf8());
    application_ = std::make_unique<QApplication>(argumentCount_, arguments_);
    QApplication::setStyle("Fusion");
    QApplication::setQuitOnLastWindowClosed(false);
  }
  void TearDown() override { application_.reset(); }

 private:
  QTemporaryDir folder_;
  int argumentCount_ = 1;
  char name_[5] = "test";
  char* arguments_[2] = {name_, nullptr};
  std::unique_ptr<QApplication> application_;
};

const testing::Environment* const environment =
    testing::AddGlobalTestEnvironment(new OffscreenApplication);

}  // namespace
}  // namespace zephlin::test
