#include "Tests/Contract/ContractTest.h"

namespace zephlin::contract {
namespace {

class AlertTest : public ContractTest {
 protected:
  void runModal() { platform().alerts().runModal(alert_); }

  const Alert alert_ = {
      .messageText = "Message", .informativeText = "One.\n\nTwo.", .buttons = {"Fine"}};
};

TEST_F(AlertTest, ReturnsWhenAButtonWasChosen) {
  bool returned = false;
  std::vector<ShownAlert> shown;
  mainQueue()->post([&] {
    shown = desktop().alerts();
    EXPECT_FALSE(returned);
    desktop().dismissAlert();
  });
  runModal();
  returned = true;
  EXPECT_EQ(shown, (std::vector<ShownAlert>{{"Message", {"Fine"}}}));
  EXPECT_TRUE(desktop().alerts().empty());
}

TEST_F(AlertTest, TheMainQueueGoesOnMeanwhile) {
  Words order;
  const auto queue = dispatch().makeSerialQueue("contract");
  queue->post([&] {
    desktop().letTimePass(0.02);
    mainQueue()->post([&] {
      order.emplace_back("from another thread");
      mainQueue()->postAfter(Seconds{0.02}, [&] {
        order.emplace_back("delayed");
        desktop().dismissAlert();
      });
    });
  });
  mainQueue()->post([&] { order.emplace_back("posted"); });
  runModal();
  order.emplace_back("returned");
  EXPECT_EQ(order, (Words{"posted", "from another thread", "delayed", "returned"}));
}

TEST_F(AlertTest, TimersTickMeanwhile) {
  int ticks = 0;
  const auto timer = dispatch().scheduleTimer(Seconds{0.01}, Seconds{}, [&] {
    if (++ticks == 3) {
      desktop().dismissAlert();
    }
  });
  runModal();
  EXPECT_GE(ticks, 3);
}

TEST_F(AlertTest, OneMayBeShownAfterTheOther) {
  for (int round = 0; round < 2; ++round) {
    mainQueue()->post([&] { desktop().dismissAlert(); });
    runModal();
  }
  EXPECT_TRUE(desktop().alerts().empty());
}

}  // namespace
}  // namespace zephlin::contract
