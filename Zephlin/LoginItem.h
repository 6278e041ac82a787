#pragma once

#include "Platform/Platform.h"

namespace zephlin {

/// Whether the application starts when the user logs in. It works only if the program runs from
/// an application bundle: otherwise nothing is registered, and both answers are no.
/// Main thread.
namespace LoginItem {

/// Whether the path of the main bundle ends in ".app".
bool runsFromApplicationBundle(Platform& platform);

/// Throws the platform's error, unchanged.
void setEnabled(Platform& platform, bool enabled);
bool isEnabled(Platform& platform);
/// Registered, but the user has yet to approve it in the system's settings.
bool needsApproval(Platform& platform);

}  // namespace LoginItem

}  // namespace zephlin
