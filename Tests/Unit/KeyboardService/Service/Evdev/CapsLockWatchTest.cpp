#include <gtest/gtest.h>

#include <initializer_list>

#include "KeyboardService/Service/Evdev/CapsLockWatch.h"
#include "Tests/Unit/KeyboardService/Service/Evdev/KeyEvents.h"

namespace zephlin {
namespace {

constexpr InputEvent pressed = capsLock(KeyPressed);
constexpr InputEvent released = capsLock(KeyReleased);
constexpr InputEvent repeated = capsLock(KeyRepeated);
constexpr InputEvent lit{EV_LED, LED_CAPSL, 1};
constexpr InputEvent dark{EV_LED, LED_CAPSL, 0};

bool releases(CapsLockWatch& watch, std::initializer_list<InputEvent> batch) {
  for (const InputEvent& event : batch) {
    watch.take(event);
    watch.take(endOfFrame);
  }
  return watch.takeRelease();
}

TEST(CapsLockWatch, ReleasesAPressWhileTheLedIsLit) {
  CapsLockWatch watch;
  EXPECT_FALSE(releases(watch, {pressed}));
  watch.setLed(true);
  EXPECT_TRUE(releases(watch, {pressed}));
}

TEST(CapsLockWatch, ReleasesEachPressOnce) {
  CapsLockWatch watch;
  watch.setLed(true);
  EXPECT_TRUE(releases(watch, {pressed}));
  EXPECT_FALSE(watch.takeRelease());
  EXPECT_FALSE(releases(watch, {released}));
  EXPECT_TRUE(releases(watch, {pressed}));
}

TEST(CapsLockWatch, TheLedCountsAsItWasAtThePress) {
  CapsLockWatch watch;
  EXPECT_TRUE(releases(watch, {lit, pressed, dark}));
  EXPECT_FALSE(releases(watch, {pressed, lit}));
  EXPECT_FALSE(releases(watch, {dark, pressed}));
}

TEST(CapsLockWatch, APressThatIsOverWhenItIsReadIsLeftAlone) {
  CapsLockWatch watch;
  watch.setLed(true);
  EXPECT_FALSE(releases(watch, {pressed, released}));
  EXPECT_TRUE(releases(watch, {pressed, released, pressed}));
  EXPECT_FALSE(releases(watch, {lit, pressed, dark, released, pressed}));
}

TEST(CapsLockWatch, RepetitionsAreNotPresses) {
  CapsLockWatch watch;
  EXPECT_FALSE(releases(watch, {pressed}));
  EXPECT_FALSE(releases(watch, {lit, repeated}));
  EXPECT_TRUE(releases(watch, {released, pressed, repeated}));
}

TEST(CapsLockWatch, OtherLedsAreNotTheLock) {
  CapsLockWatch watch;
  EXPECT_FALSE(releases(watch, {{EV_LED, LED_NUML, 1}, pressed}));
}

}  // namespace
}  // namespace zephlin
