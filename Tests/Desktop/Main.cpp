#include <gtest/gtest.h>

#include <QCoreApplication>
#include <cstdio>

#include "Tests/Support/PrivateMachine.h"

int main(int argc, char* argv[]) {
  testing::InitGoogleTest(&argc, argv);
  if (!GTEST_FLAG_GET(list_tests)) {
    zephlin::test::enterPrivateMachine(zephlin::test::Identity::Root);
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
