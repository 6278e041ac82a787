#include <gtest/gtest.h>

#include <QApplication>
#include <memory>

namespace zephlin {
namespace {

/// The one QApplication, on Qt's screen in memory.
class QtEnvironment : public testing::Environment {
 public:
  void SetUp() override {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qunsetenv("QT_SCALE_FACTOR");
    application_ = std::make_unique<QApplication>(argumentCount_, arguments_);
    QApplication::setStyle("Fusion");
    QApplication::setQuitOnLastWindowClosed(false);
  }
  void TearDown() override { application_.reset(); }

 private:
  std::string name_ = "WindowsTest";
  int argumentCount_ = 1;
  char* arguments_[2] = {name_.data(), nullptr};
  std::unique_ptr<QApplication> application_;
};

// GoogleTest owns it.
[[maybe_unused]] const testing::Environment* const environment =
    testing::AddGlobalTestEnvironment(new QtEnvironment);

}  // namespace
}  // namespace zephlin
