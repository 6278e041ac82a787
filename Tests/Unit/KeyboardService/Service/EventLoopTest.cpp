#include <gtest/gtest.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>

#include <csignal>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <system_error>

#include "Base/FileDescriptor.h"
#include "KeyboardService/Service/EventLoop.h"

namespace zephlin {
namespace {

using namespace std::chrono_literals;

void stop(const EventLoop& loop) {
  sd_event_exit(loop.native(), 0);
}

TEST(EventLoop, ATimerDoesNothingUntilItIsGivenADelay) {
  EventLoop loop;
  bool silentRan = false;
  EventSource silent = loop.timer([&] { silentRan = true; });
  EventSource timer = loop.timer([&] { stop(loop); });
  const auto start = std::chrono::steady_clock::now();
  timer.setDelay(20ms);
  loop.run();
  EXPECT_GE(std::chrono::steady_clock::now() - start, 20ms);
  EXPECT_FALSE(silentRan);
  EXPECT_FALSE(timer.isEnabled());
}

TEST(EventLoop, ATimerGoesOffWhenItsTimeHasCome) {
  EventLoop loop;
  EventSource timer = loop.timer([&] { stop(loop); });
  const auto time = std::chrono::steady_clock::now() + 20ms;  // The monotonic clock, on Linux.
  timer.setTime(std::chrono::ceil<std::chrono::microseconds>(time.time_since_epoch()));
  loop.run();
  EXPECT_GE(std::chrono::steady_clock::now(), time);
  EXPECT_FALSE(timer.isEnabled());
}

TEST(EventLoop, WhatIsPutFirstIsCalledFirst) {
  for (const bool isSecondFirst : {false, true}) {
    EventLoop loop;
    std::string calls;
    const FileDescriptor event(::eventfd(1, EFD_CLOEXEC));
    const FileDescriptor other(::eventfd(1, EFD_CLOEXEC));
    const auto note = [&](char name) {
      calls += name;
      if (calls.size() == 2) {
        stop(loop);
      }
    };
    EventSource one = loop.watch(event.get(), EPOLLIN, [&](std::uint32_t) {
      note('1');
      one.disable();
    });
    EventSource two = loop.watch(other.get(), EPOLLIN, [&](std::uint32_t) {
      note('2');
      two.disable();
    });
    (isSecondFirst ? two : one).putFirst();
    loop.run();
    EXPECT_EQ(calls, isSecondFirst ? "21" : "12");
  }
}

TEST(EventLoop, ADescriptorCallsBackWithWhatHolds) {
  EventLoop loop;
  const FileDescriptor event(::eventfd(1, EFD_CLOEXEC));
  std::uint32_t seen = 0;
  const EventSource source = loop.watch(event.get(), EPOLLIN, [&](std::uint32_t events) {
    seen = events;
    stop(loop);
  });
  loop.run();
  EXPECT_EQ(seen, static_cast<std::uint32_t>(EPOLLIN));
}

TEST(EventLoop, ASourceMayEndItselfInItsOwnCallback) {
  EventLoop loop;
  const auto witness = std::make_shared<int>(0);
  std::optional<EventSource> source;
  source = loop.timer([&source, &loop, witness] {
    source.reset();
    ++*witness;  // What the callback holds is still there.
    stop(loop);
  });
  source->setDelay(0us);
  loop.run();
  EXPECT_EQ(*witness, 1);
  EXPECT_EQ(witness.use_count(), 1);
}

TEST(EventLoop, AnExceptionOfACallbackLeavesRun) {
  EventLoop loop;
  EventSource source = loop.timer([] { throw std::runtime_error("oops"); });
  source.setDelay(0us);
  EXPECT_THROW(loop.run(), std::runtime_error);
}

TEST(EventLoop, ARefusalOfTheSystemIsThrown) {
  EventLoop loop;
  EXPECT_THROW(loop.watch(-1, EPOLLIN, [](std::uint32_t) {}), std::system_error);
}

TEST(EventLoop, ASignalEndsTheLoop) {
  EventLoop loop;
  loop.stopOnSignal(SIGUSR1);
  ::raise(SIGUSR1);
  EXPECT_NO_THROW(loop.run());
}

}  // namespace
}  // namespace zephlin
