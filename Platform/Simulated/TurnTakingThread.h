#pragma once

#include <condition_variable>
#include <exception>
#include <functional>
#include <mutex>
#include <thread>

namespace zephlin {

/// A thread that runs only while its owner waits for it, so that the two never run at once and
/// whatever they share needs no lock. It acts as a second thread under a virtual clock.
class TurnTakingThread {
 public:
  TurnTakingThread();
  TurnTakingThread(const TurnTakingThread&) = delete;
  TurnTakingThread& operator=(const TurnTakingThread&) = delete;
  /// The thread must be idle.
  ~TurnTakingThread();

  /// No work is begun and unfinished. Owner.
  [[nodiscard]] bool isIdle() const { return !work_; }
  /// Hands over work, which begins at the next turn. The thread must be idle. Owner.
  void begin(std::function<void()> work);
  /// Lets the thread run until it has finished its work or yields. Throws what the work threw.
  /// Owner.
  void takeTurn();
  /// Gives the turn back and returns at the next one. From the work.
  void yieldTurn();

 private:
  enum class Turn { Owners, Threads };

  void run();
  /// Gives the turn to the other side and waits for it to come back.
  void passTo(Turn other);
  void waitFor(Turn own);

  std::function<void()> work_;
  std::exception_ptr failure_;
  bool ending_ = false;
  // No semaphore: waiting for one of the standard library's yields the processor first, which takes
  // long where other programs want it.
  std::mutex mutex_;
  std::condition_variable turnChanged_;
  Turn turn_ = Turn::Owners;
  std::thread thread_;
};

}  // namespace zephlin
