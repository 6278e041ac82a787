// The devices are made up by umockdev, whose library must be loaded before all others.

#include <gtest/gtest.h>
#include <unistd.h>

#include <QCoreApplication>

int main(int argumentCount, char** arguments) {
  if (!qEnvironmentVariable("LD_PRELOAD").contains("libumockdev-preload")) {
    qputenv("LD_PRELOAD", "libumockdev-preload.so.0");
    ::execv("/proc/self/exe", arguments);
    return EXIT_FAILURE;
  }
  const QCoreApplication application(argumentCount, arguments);
  testing::InitGoogleTest(&argumentCount, arguments);
  return RUN_ALL_TESTS();
}
