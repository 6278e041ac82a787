#import "Platform/macOS/MacPlatform.h"

#import "Platform/macOS/MacUpdater.h"

namespace zephlin {

std::unique_ptr<Updater> MacPlatform::makeStartedUpdater() {
  return makeMacUpdater();
}

// AppKit reads the arguments by itself.
std::unique_ptr<Platform> makePlatform(int& argc, char** argv) {
  (void)argc;
  (void)argv;
  return std::make_unique<MacPlatform>();
}

}  // namespace zephlin
