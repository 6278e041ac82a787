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

}  // namespace
}  // namespace zephlin::test
