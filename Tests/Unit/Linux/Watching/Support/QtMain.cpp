#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QTemporaryDir>

int main(int argumentCount, char** arguments) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  // libdbus reads it once, so every private bus of the process stands there.
  const QTemporaryDir busFolder;
  qputenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=" + busFolder.filePath("bus").toUtf8());
  const QGuiApplication application(argumentCount, arguments);
  testing::InitGoogleTest(&argumentCount, arguments);
  return RUN_ALL_TESTS();
}
