// Users of other languages: the texts are English, but numbers, letters and directions are not to
// get in their way.

#include <filesystem>

#include "Tests/Desktop/Harness/Accessibility.h"
#include "Tests/Desktop/Harness/DesktopTest.h"

namespace zephlin::test {
namespace {

class Languages : public DesktopTest {
 protected:
  /// The environment of the language's users. Its locale is made for these tests alone.
  static Environment speaking(const std::string& language) {
    static const TemporaryDirectory locales;
    const std::string name = language + ".UTF-8";
    const std::string folder = locales.file(name);
    if (!std::filesystem::exists(folder)) {
      const Outcome outcome =
          runIn(desktop().environment(locales.path()),
                {"/usr/bin/localedef", "--no-archive", "-i", language, "-f", "UTF-8", folder});
      EXPECT_TRUE(std::filesystem::exists(folder)) << outcome.errors;
    }
    return {{"LANG", name}, {"LOCPATH", locales.path()}};
  }

  static void expectTheSameAsInEnglish(const std::string& language) {
    const Environment environment = merged(accessible(), speaking(language));
    App app(desktop(), {.environment = environment});
    app.waitForStatusLine("On. Every tap registers instantly");
    app.item().choose("Instant Caps Lock");
    app.waitForStatusLine("Off, using your Mac's normal delay");
    EXPECT_EQ(runIn(app.environment(), {"/usr/bin/Zephlin", "restore"}).status, 0);
    EXPECT_EQ(runIn(app.environment(), {"/usr/bin/Zephlin", "status"}).output,
              "Keyboard HID services: 2\n  instant (0 ms):      0\n"
              "  Apple default:       2\n  other delay values:  0\n"
              "Zephlin override is NOT active.\n");
    expectTapTestToCount(app, language);
    EXPECT_EQ(app.quit(), 0);
    // What was stored is read back, and was understood.
    App next(desktop(), {.home = app.home(), .environment = environment});
    next.waitForStatusLine("Off, using your Mac's normal delay");
    EXPECT_EQ(next.program().log(), "");
  }

  static void expectTapTestToCount(App& app, const std::string& language) {
    const Accessibility reader(desktop().sessionBus());
    const pid_t process = app.program().id();
    app.item().choose("Tap Test…");
    const xcb_window_t window = desktop().screen().waitForWindow("Tap Test");
    reader.waitForName(process, "Waiting for taps…");
    desktop().fingers().tap(Key::ShiftLeft);
    desktop().fingers().tap(Key::CapsLock);
    reader.waitForName(process, "1 Registered");
    reader.waitForName(process, "Every tap registered. Instant");
    desktop().photograph("tap-test-" + language);
    const bool isFirstLeft =
        reader.placeOf(process, "1 Taps").x() < reader.placeOf(process, "1 Registered").x();
    EXPECT_EQ(isFirstLeft, language != "ar_EG") << language;
    desktop().fingers().tap(Key::CapsLock);
    desktop().screen().close(window);
    desktop().screen().waitUntilNoWindow("Tap Test");
    app.item().choose("About Zephlin");
    desktop().screen().waitForWindow("Zephlin");
    desktop().photograph("about-" + language);
    desktop().fingers().tap(Key::Escape);
    desktop().screen().waitUntilNoWindow("Zephlin");
  }
};

TEST_F(Languages, German) {
  expectTheSameAsInEnglish("de_DE");
}

TEST_F(Languages, Turkish) {
  expectTheSameAsInEnglish("tr_TR");
}

TEST_F(Languages, Japanese) {
  expectTheSameAsInEnglish("ja_JP");
}

TEST_F(Languages, Arabic) {
  expectTheSameAsInEnglish("ar_EG");
}

}  // namespace
}  // namespace zephlin::test
