#include <gtest/gtest.h>

#include <QCoreApplication>
#include <cstdio>
#include <map>
#include <string>

#include "Tests/Desktop/Harness/DesktopTest.h"
#include "Tests/Desktop/Harness/Gnome.h"
#include "Tests/Desktop/Harness/Plasma.h"
#include "Tests/Desktop/Harness/Sway.h"
#include "Tests/Desktop/Harness/Xfce.h"
#include "Tests/Support/PrivateMachine.h"

/// The optional argument is the desktop that the tests run on.
int main(int argc, char* argv[]) {
  testing::InitGoogleTest(&argc, argv);
  const std::map<std::string, zephlin::test::MakeShell> shells{
      {"gnome", zephlin::test::makeGnome},
      {"plasma", zephlin::test::makePlasmaOnWayland},
      {"plasma-x11", zephlin::test::makePlasmaOnX11},
      {"sway", zephlin::test::makeSway},
      {"xfce", zephlin::test::makeXfce}};
  if (argc > 1) {
    zephlin::test::DesktopTest::setShell(shells.at(argv[1]));
  }
  if (!GTEST_FLAG_GET(list_tests)) {
    zephlin::test::enterPrivateMachine(zephlin::test::Identity::Ordinary);
    zephlin::test::addPrograms({{"Zephlin", ZEPHLIN_PROGRAM},
                                {"hidutil", OBSERVED_HIDUTIL_PROGRAM},
                                {"zephlin-hidd", SERVICE_PROGRAM}});
  }
  const QCoreApplication application(argc, argv);
  const int status = RUN_ALL_TESTS();
  if (testing::UnitTest::GetInstance()->test_to_run_count() == 0) {
    std::fputs("no test has this name\n", stderr);
    return 1;
  }
  return status;
}
