#pragma once

#include "Platform/Application.h"

namespace zephlin {

/// The application's main menu. An accessory never shows it; its key equivalents work while one of
/// the application's windows is key.
namespace MainMenu {

/// Builds the menu and makes it the application's. Called once, on the main thread.
void install(Application& application);

}  // namespace MainMenu

}  // namespace zephlin
