#import "Platform/macOS/MacUpdater.h"

#import <Foundation/Foundation.h>

#include <utility>

#import "Platform/macOS/Retained.h"

/// What is used of Sparkle's SPUStandardUpdaterController, as Sparkle 2 declares it. The class is
/// found when the program runs, so that it builds and runs without the framework too.
@protocol ZephlinStandardUpdaterController <NSObject>
- (instancetype)initWithStartingUpdater:(BOOL)startUpdater
                        updaterDelegate:(id)updaterDelegate
                     userDriverDelegate:(id)userDriverDelegate;
- (void)checkForUpdates:(id)sender;
@end

namespace zephlin {

namespace {

using Controller = id<ZephlinStandardUpdaterController>;

class MacUpdater final : public Updater {
 public:
  explicit MacUpdater(Retained<Controller> controller) : controller_(std::move(controller)) {}

  void checkForUpdates() override { [controller_.get() checkForUpdates:nil]; }

 private:
  Retained<Controller> controller_;
};

/// Nil where the bundle has no Sparkle.
Class updaterControllerClass() {
  NSString* const frameworks = [[NSBundle mainBundle] privateFrameworksPath];
  NSBundle* const sparkle =
      [NSBundle bundleWithPath:[frameworks stringByAppendingPathComponent:@"Sparkle.framework"]];
  return [sparkle load] ? [sparkle classNamed:@"SPUStandardUpdaterController"] : Nil;
}

}  // namespace

std::unique_ptr<Updater> makeMacUpdater() {
  const Controller controller = [updaterControllerClass() alloc];
  return std::make_unique<MacUpdater>(Retained<Controller>(
      [controller initWithStartingUpdater:YES updaterDelegate:nil userDriverDelegate:nil]));
}

}  // namespace zephlin
