// GNOME's busy cursor, which its extension for tray icons starts with each choice from a menu.

#include <stdexcept>

#include "Tests/Desktop/Harness/EverydayTest.h"

namespace zephlin::test {
namespace {

/// Less than the time after which GNOME ends it by itself.
constexpr double patience = 10;

class GnomeCursor : public EverydayTest {
 protected:
  static bool isBusy() {
    const QVariantList reply = desktop().sessionBus().call(
        {"org.gnome.Shell", "/org/gnome/Shell", "org.gnome.Shell", "Eval"},
        {"imports.gi.Shell.WindowTracker.get_default().get_startup_sequences().length"});
    if (!reply.at(0).toBool()) {
      throw std::runtime_error("GNOME Shell: " + reply.at(1).toString().toStdString());
    }
    return reply.at(1).toString() != "0";
  }

  static double secondsUntilIdle() {
    const double since = monotonicSeconds();
    waitUntil("an idle cursor", [] { return !isBusy(); });
    return monotonicSeconds() - since;
  }
};

TEST_F(GnomeCursor, IsNotBusyAfterAChoiceThatOpensNoWindow) {
  for (int choice = 0; choice < 2; ++choice) {
    menu_.choose("Re-apply Now");
    menu_.waitUntilClosed();
    EXPECT_LT(secondsUntilIdle(), patience);
  }
}

}  // namespace
}  // namespace zephlin::test
