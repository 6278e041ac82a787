#include <gtest/gtest.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>

#include <csignal>
#include <memory>
#include <numeric>
#include <optional>
#include <stdexcept>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include "Base/FileDescriptor.h"
#include "KeyboardService/Service/EventLoop.h"

namespace zephlin {
namespace {

using namespace std::chrono_literals;

TEST(EventLoop, ATimerDoesNothingUntilItIsGivenADelay) {
  EventLoop loop;
  bool silentRan = false;
  EventSource silent = loop.timer([&] { silentRan = true; });
  EventSource timer = loop.timer([&] { loop.stop(); });
  const auto start = std::chrono::steady_clock::now();
  timer.setDelay(20ms);
  loop.run();
  EXPECT_GE(std::chrono::steady_clock::now() - start, 20ms);
  EXPECT_FALSE(silentRan);
  EXPECT_FALSE(timer.isEnabled());
}

TEST(EventLoop, ATimerGoesOffWhenItsTimeHasCome) {
  EventLoop loop;
  EventSource timer = loop.timer([&] { loop.stop(); });
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
        loop.stop();
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
    loop.stop();
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
    loop.stop();
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

TEST(EventLoop, CallsWhatIsPostedInItsOrder) {
  EventLoop loop;
  std::string calls;
  loop.post([&] {
    calls += '1';
    loop.post([&] {
      calls += '3';
      loop.stop();
    });
  });
  loop.post([&] { calls += '2'; });
  EXPECT_EQ(calls, "");
  loop.run();
  EXPECT_EQ(calls, "123");
}

TEST(EventLoop, AnyThreadMayPost) {
  EventLoop loop;
  constexpr int postsOfEach = 1000;
  constexpr int threads = 3;
  std::vector<std::vector<int>> received(threads);
  int left = postsOfEach * threads;
  std::vector<std::thread> posting;
  for (auto& numbers : received) {
    posting.emplace_back([&loop, &numbers, &left] {
      for (int number = 0; number < postsOfEach; ++number) {
        loop.post([&loop, &numbers, &left, number] {
          numbers.push_back(number);
          if (--left == 0) {
            loop.stop();
          }
        });
      }
    });
  }
  loop.run();
  for (auto& thread : posting) {
    thread.join();
  }
  std::vector<int> inOrder(postsOfEach);
  std::iota(inOrder.begin(), inOrder.end(), 0);
  EXPECT_EQ(received, std::vector(threads, inOrder));
}

TEST(EventLoop, APostWakesALoopThatWaits) {
  EventLoop loop;
  std::thread poster;
  EventSource timer = loop.timer([&] {
    poster = std::thread([&] {
      std::this_thread::sleep_for(10ms);
      loop.post([&] { loop.stop(); });
    });
  });
  timer.setDelay(0us);
  loop.run();
  poster.join();
}

TEST(EventLoop, WhatWasPostedInVainIsDestroyed) {
  const auto witness = std::make_shared<int>(0);
  {
    EventLoop loop;
    loop.post([&loop] { loop.stop(); });
    loop.run();
    loop.post([witness] { ++*witness; });
  }
  EXPECT_EQ(*witness, 0);
  EXPECT_EQ(witness.use_count(), 1);
}

TEST(EventLoop, AnExceptionOfWhatWasPostedLeavesRun) {
  EventLoop loop;
  loop.post([] { throw std::runtime_error("oops"); });
  EXPECT_THROW(loop.run(), std::runtime_error);
}

TEST(EventLoop, ASignalEndsTheLoop) {
  EventLoop loop;
  loop.stopOnSignal(SIGUSR1);
  ::raise(SIGUSR1);
  EXPECT_NO_THROW(loop.run());
}

}  // namespace
}  // namespace zephlin
