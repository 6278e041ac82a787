#include <gtest/gtest.h>

#include <QApplication>
#include <memory>

namespace {

/// Qt's application, without a display, for as long as the tests run.
class OffscreenApplication final : public testing::Environment {
 public:
  void SetUp() override {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    application_ = std::make_unique<QApplication>(argumentCount_, arguments_);
    QApplication::setQuitOnLastWindowClosed(false);
  }
  void TearDown() override { application_.reset(); }

 private:
  int argumentCount_ = 1;
  char name_[5] = "test";
  char* arguments_[2] = {name_, nullptr};
  std::unique_ptr<QApplication> application_;
};

const testing::Environment* const environment =
    testing::AddGlobalTestEnvironment(new OffscreenApplication);

}  // namespace
