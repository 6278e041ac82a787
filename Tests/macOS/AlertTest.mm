#include "StandIns/Actions.h"
#include "StandIns/CallLog.h"
#import "Support/Mac.h"
#import "Support/StandInMac.h"

namespace zephlin::test {
namespace {

class AlertTest : public MacTest {
 protected:
  const Alert alert_{.messageText = "Zephlin · Instant Caps Lock",
                     .informativeText = "One.\n\nTwo — with a \"quote\".",
                     .buttons = {"OK"}};
};

TEST_F(AlertTest, TheAlertShowsItsTextsAndItsButtonAndGoesWhenThatIsClicked) {
  Calls texts;
  mac::whenModal([&] {
    texts = labelTexts([[NSApp modalWindow] contentView]);
    clickInModalWindow("OK");
  });
  platform().alerts().runModal(alert_);
  EXPECT_EQ(standins::calls({"NSAlert"}), Calls{"NSAlert runModal(style 1, 1 buttons)"});
  EXPECT_NE(std::find(texts.begin(), texts.end(), alert_.messageText), texts.end());
  EXPECT_NE(std::find(texts.begin(), texts.end(), alert_.informativeText), texts.end());
  EXPECT_EQ(liveObjectsOf("NSAlert"), 0);
}

TEST_F(AlertTest, TimersAndTheMainQueueGoOnWhileTheAlertIsModalAndTheKeyboardWaits) {
  int ticks = 0;
  bool posted = false;
  int values = 0;
  int valuesWhileModal = -1;
  const auto input = platform().hidDevices().openCapsLockKey([&](bool) { ++values; });
  mac::whenModal([&] {
    standins::reportKey(7, 57, 1);
    platform().dispatch().mainQueue()->post([&] { posted = true; });
  });
  const auto timer = platform().dispatch().scheduleTimer(Seconds{0.01}, Seconds{}, [&] {
    if (++ticks >= 3 && posted && valuesWhileModal < 0) {
      valuesWhileModal = values;
      clickInModalWindow("OK");
    }
  });
  platform().alerts().runModal(alert_);
  EXPECT_GE(ticks, 3);
  EXPECT_TRUE(posted);
  EXPECT_EQ(valuesWhileModal, 0);
  waitUntil([&] { return values == 1; });
}

}  // namespace
}  // namespace zephlin::test
