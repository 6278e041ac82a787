#import "Platform/macOS/MacUpdater.h"

#import <AppKit/AppKit.h>

#include <utility>

#import "Platform/macOS/NativeViews.h"
#import "Platform/macOS/Retained.h"

/// How a controller of Sparkle's is made. Its class is found when the program runs, so that it
/// builds and runs without the framework too.
@protocol ZephlinSparkleController <ZephlinUpdaterController>
- (instancetype)initWithStartingUpdater:(BOOL)startUpdater
                        updaterDelegate:(id)updaterDelegate
                     userDriverDelegate:(id)userDriverDelegate;
@end

/// The controller of a copy without Sparkle.
@interface ZephlinMissingUpdater : NSObject <ZephlinUpdaterController>
@end

@implementation ZephlinMissingUpdater

- (void)checkForUpdates:(id)sender {
  (void)sender;
  [NSApp activateIgnoringOtherApps:YES];
  zephlin::MacAlerts().runModal(
      {.messageText = "Zephlin does not look for updates",
       .informativeText =
           "This copy has no updater. To update, get a newer copy from where you got "
           "this one, and replace this one with it.",
       .buttons = {"OK"}});
}

@end

namespace zephlin {

namespace {

using Controller = id<ZephlinUpdaterController>;

class MacUpdater final : public Updater {
 public:
  explicit MacUpdater(Retained<Controller> controller) : controller_(std::move(controller)) {}

  [[nodiscard]] Controller controller() const { return controller_.get(); }
  void checkForUpdates() override { [controller_.get() checkForUpdates:nil]; }

 private:
  Retained<Controller> controller_;
};

/// Nil if the bundle has no Sparkle.
Class sparkleControllerClass() {
  NSString* const frameworks = [[NSBundle mainBundle] privateFrameworksPath];
  NSBundle* const sparkle =
      [NSBundle bundleWithPath:[frameworks stringByAppendingPathComponent:@"Sparkle.framework"]];
  return [sparkle load] ? [sparkle classNamed:@"SPUStandardUpdaterController"] : Nil;
}

Retained<Controller> startedController() {
  if (const Class sparkle = sparkleControllerClass()) {
    const id<ZephlinSparkleController> controller = [sparkle alloc];
    return Retained<Controller>([controller initWithStartingUpdater:YES
                                                    updaterDelegate:nil
                                                 userDriverDelegate:nil]);
  }
  return Retained<Controller>([[ZephlinMissingUpdater alloc] init]);
}

}  // namespace

std::unique_ptr<Updater> makeMacUpdater() {
  return std::make_unique<MacUpdater>(startedController());
}

Controller updaterController(const Updater& updater) {
  return static_cast<const MacUpdater&>(updater).controller();
}

}  // namespace zephlin
