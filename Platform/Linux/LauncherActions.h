#pragma once

#include <QString>

namespace zephlin {

class LinuxApplication;
class StatusReporter;

/// The actions that the application's launcher offers besides starting it. Each has a name in the
/// desktop file, and the option of that name has the same effect. Main thread.

/// The action that the first argument asks for; empty if it is no such option.
QString launcherActionIn(int argc, char** argv);

/// Does nothing if there is no such action.
void performLauncherAction(const QString& name, LinuxApplication& application,
                           StatusReporter& reporter);

}  // namespace zephlin
