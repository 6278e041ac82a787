// How windows come to the front, and how a launcher learns that a start is over.

#include <cstring>
#include <filesystem>

#include "Tests/Desktop/Harness/DesktopTest.h"
#include "Tests/Support/Files.h"

namespace zephlin::test {
namespace {

void sendToRoot(const XConnection& server, xcb_window_t window, const std::string& type,
                std::uint32_t number) {
  xcb_client_message_event_t event{};
  event.response_type = XCB_CLIENT_MESSAGE;
  event.format = 32;
  event.window = window;
  event.type = server.atom(type);
  event.data.data32[0] = number;
  xcb_send_event(server.get(), 0, server.root(),
                 XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                 reinterpret_cast<const char*>(&event));
  server.synchronize();
}

/// Another program's window, which takes the focus.
class OtherWindow {
 public:
  explicit OtherWindow(const Screen& screen)
      : server_(screen.display()), window_(xcb_generate_id(server_.get())) {
    const std::string title = "Other";
    xcb_create_window(server_.get(), XCB_COPY_FROM_PARENT, window_, server_.root(), 0, 0, 300, 200,
                      0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_change_property(server_.get(), XCB_PROP_MODE_REPLACE, window_, server_.atom("_NET_WM_NAME"),
                        server_.atom("UTF8_STRING"), 8, static_cast<std::uint32_t>(title.size()),
                        title.data());
    xcb_map_window(server_.get(), window_);
    server_.synchronize();
    screen.waitForWindow(title);
    constexpr std::uint32_t directUserAction = 2;
    sendToRoot(server_, window_, "_NET_ACTIVE_WINDOW", directUserAction);
    waitUntil("the focus of another window", [&] { return screen.titleOfActiveWindow() == title; });
  }

 private:
  XConnection server_;
  xcb_window_t window_;
};

/// Hears what applications tell launchers, as a panel does.
class StartupMessages {
 public:
  explicit StartupMessages(const Screen& screen) : server_(screen.display()) {
    constexpr std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(server_.get(), server_.root(), XCB_CW_EVENT_MASK, &events);
    server_.synchronize();
  }

  /// All of them, one after the other, each with a zero at its end.
  const std::string& heard() {
    while (const Owned<xcb_generic_event_t> event{xcb_poll_for_event(server_.get())}) {
      const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(*event);
      constexpr std::uint8_t sentByAProgram = 0x80;
      if (message.response_type == (XCB_CLIENT_MESSAGE | sentByAProgram) &&
          (message.type == first_ || message.type == next_)) {
        const char* const bytes = reinterpret_cast<const char*>(message.data.data8);
        const std::size_t length = ::strnlen(bytes, sizeof message.data.data8);
        heard_.append(bytes, length);
        if (length < sizeof message.data.data8) {
          heard_.push_back('\0');
        }
      }
    }
    return heard_;
  }

  void waitFor(const std::string& message) {
    waitUntil([&] { return "the startup message " + message + " instead of " + heard(); },
              [&] { return heard() == message + '\0'; });
    heard_.clear();
  }

 private:
  XConnection server_;
  xcb_atom_t first_ = server_.atom("_NET_STARTUP_INFO_BEGIN");
  xcb_atom_t next_ = server_.atom("_NET_STARTUP_INFO");
  std::string heard_;
};

/// The environments of a process's children.
std::string environmentsOfChildren(pid_t process) {
  std::string environments;
  for (const std::string& thread : namesIn("/proc/" + std::to_string(process) + "/task")) {
    std::ifstream children("/proc/" + std::to_string(process) + "/task/" + thread + "/children");
    for (std::string child; children >> child;) {
      environments += contentOf("/proc/" + child + "/environ");
    }
  }
  return environments;
}

class Activation : public DesktopTest {
 protected:
  static void startAgain(const App& first, const Environment& environment = {}) {
    App second(desktop(), {.home = first.home(), .environment = environment});
    EXPECT_EQ(second.program().waitForEnd(), 0);
  }
  static void waitUntilTapTestIsActive() {
    waitUntil("the tap test to be active",
              [] { return desktop().screen().titleOfActiveWindow() == "Tap Test"; });
  }
};

TEST_F(Activation, ASecondStartGivesTheTapTestTheFocusOfAnotherWindow) {
  App app(desktop());
  app.item();
  startAgain(app);
  waitUntilTapTestIsActive();
  const OtherWindow other(desktop().screen());
  startAgain(app);
  waitUntilTapTestIsActive();
}

TEST_F(Activation, ASecondStartRestoresAMinimisedTapTest) {
  App app(desktop());
  app.item();
  startAgain(app);
  const Screen& screen = desktop().screen();
  const xcb_window_t window = screen.waitForWindow("Tap Test");
  constexpr std::uint32_t iconic = 3;
  sendToRoot(screen.connection(), window, "WM_CHANGE_STATE", iconic);
  screen.waitUntilNoWindow("Tap Test");
  const OtherWindow other(screen);
  startAgain(app);
  EXPECT_EQ(screen.waitForWindow("Tap Test"), window);
  waitUntilTapTestIsActive();
}

TEST_F(Activation, ALauncherLearnsThatAStartIsOverAlsoWithoutAWindow) {
  StartupMessages messages(desktop().screen());
  App app(desktop(), {.environment = {{"DESKTOP_STARTUP_ID", "of a launcher \"1\"_TIME1"}}});
  messages.waitFor("remove: ID=of\\ a\\ launcher\\ \\\"1\\\"_TIME1");
  app.item();
  startAgain(app, {{"DESKTOP_STARTUP_ID", "2_TIME2"}});
  waitUntilTapTestIsActive();
  messages.waitFor("remove: ID=2_TIME2");
  EXPECT_EQ(messages.heard(), "");
}

TEST_F(Activation, ProgramsThatItStartsDoNotInheritTheLaunchersToken) {
  desktop().hidutil().hold();
  App app(desktop(), {.environment = {{"DESKTOP_STARTUP_ID", "1_TIME1"},
                                      {"XDG_ACTIVATION_TOKEN", "1_TIME1"}}});
  waitUntil("a run of hidutil", [] { return desktop().hidutil().isHeld(); });
  const std::string environments = environmentsOfChildren(app.program().id());
  EXPECT_NE(environments.find("XDG_RUNTIME_DIR="), std::string::npos);
  EXPECT_EQ(environments.find("DESKTOP_STARTUP_ID"), std::string::npos);
  EXPECT_EQ(environments.find("XDG_ACTIVATION_TOKEN"), std::string::npos);
  desktop().hidutil().release();
}

}  // namespace
}  // namespace zephlin::test
