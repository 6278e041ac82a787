#pragma once

#import <Foundation/Foundation.h>

#include <memory>

#include "Platform/Services.h"

/// What is used of Sparkle's SPUStandardUpdaterController, as Sparkle 2 declares it.
@protocol ZephlinUpdaterController <NSObject>
- (void)checkForUpdates:(id)sender;
@end

namespace zephlin {

/// Sparkle's standard updater, started. Without Sparkle.framework in the bundle, checking shows an
/// alert that says that this copy has no updater.
std::unique_ptr<Updater> makeMacUpdater();

/// The object behind an updater of this platform, to which menu items send their action. Lives as
/// long as the updater.
id<ZephlinUpdaterController> updaterController(const Updater& updater);

}  // namespace zephlin
