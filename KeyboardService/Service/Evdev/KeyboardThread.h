#pragma once

#include <functional>
#include <memory>
#include <string>
#include <thread>

#include "KeyboardService/Service/Evdev/KeyboardHandling.h"
#include "KeyboardService/Service/EventLoop.h"
#include "KeyboardService/Service/KeyboardState.h"

namespace zephlin {

/// Handles one keyboard in a thread of its own, so that neither clients nor another keyboard can
/// make its keys late. It runs ahead of ordinary processes if the system allows it.
///
/// Everything here is used on the thread of the main loop, where the callbacks come too. None comes
/// any more once this object is destroyed, which is allowed within a callback.
class KeyboardThread {
 public:
  struct Callbacks {
    std::function<void(const KeyboardState& state)> state;
    std::function<void()> checked;
    std::function<void()> emergencyChord;

    /// The thread has ended by itself. It leaves the keyboard to the system.
    std::function<void(const std::string& reason)> failed;
  };

  /// Makes the handling in the keyboard's thread. The functions that it is given may be called
  /// there.
  using Make = std::function<std::unique_ptr<KeyboardHandling>(
      EventLoop& loop, KeyboardHandling::Report report, std::function<void()> emergencyChord)>;

  /// `name` is what tools show the thread as, up to 15 bytes of it. The main loop outlives this
  /// object. Throws std::system_error if there can be no more threads or descriptors.
  KeyboardThread(EventLoop& mainLoop, const std::string& name, Make make, Callbacks callbacks);
  KeyboardThread(const KeyboardThread&) = delete;
  KeyboardThread& operator=(const KeyboardThread&) = delete;

  /// Waits for the thread's end, which may take a while unless `end` has reported it.
  ~KeyboardThread();

  void setRule(CapsLockRule rule);

  /// `checked` is called back once the keyboard has reported its state after all that was asked of
  /// it before.
  void check();

  /// The same without a call back. The keyboard's state is reported if it has changed.
  void lookAgain();

  /// Asks the thread to leave the keyboard to the system. In place of the other callbacks, `ended`
  /// is called then.
  void end(std::function<void()> ended);

 private:
  struct Listener {
    Callbacks callbacks;
    std::function<void()> ended;
  };

  void run(const std::string& name) noexcept;
  void handle();
  void tell(std::function<void(Listener&)> what);
  void stop();

  EventLoop& mainLoop_;
  std::shared_ptr<Listener> listener_;  ///< Used by the main loop's thread alone.
  std::weak_ptr<Listener> listening_;
  EventLoop loop_;
  Make make_;
  std::unique_ptr<KeyboardHandling> handling_;  ///< Used by the keyboard's thread alone.
  std::thread thread_;
};

}  // namespace zephlin
