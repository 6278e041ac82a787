// Tests of what needs Qt but no display.

#include <gtest/gtest.h>

#include <QApplication>
#include <QTemporaryDir>

int main(int count, char* arguments[]) {
  ::testing::InitGoogleTest(&count, arguments);
  const QTemporaryDir runtimeDirectory;
  qputenv("XDG_RUNTIME_DIR", runtimeDirectory.path().toUtf8());
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QApplication application(count, arguments);
  return RUN_ALL_TESTS();
}
