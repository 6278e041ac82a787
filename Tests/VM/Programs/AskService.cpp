// An honest client: asks zephlin-hidd for its keyboards several times a second, on a connection of
// its own each time, for so many seconds: AskService SECONDS. Prints the median and the worst of
// the times from connecting to the response, in milliseconds.

#include <algorithm>
#include <chrono>
#include <iostream>
#include <string>
#include <thread>
#include <vector>

#include "KeyboardService/Client/ServiceClient.h"
#include "KeyboardService/Protocol/Messages.h"
#include "KeyboardService/Protocol/Transport.h"

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr auto timeBetweenRequests = 100ms;

}  // namespace

int main(int argumentCount, char** arguments) {
  const auto end =
      Clock::now() + std::chrono::seconds(argumentCount > 1 ? std::stoi(arguments[1]) : 1);
  std::vector<double> times;
  while (Clock::now() < end) {
    const auto start = Clock::now();
    try {
      zephlin::decodeResponse(zephlin::askService(std::string(zephlin::defaultSocketPath),
                                                  zephlin::encode(zephlin::ListRequest{})));
    } catch (const std::exception& error) {
      std::cout << error.what() << '\n';
      return 1;
    }
    times.push_back(std::chrono::duration<double, std::milli>(Clock::now() - start).count());
    std::this_thread::sleep_for(timeBetweenRequests);
  }
  std::sort(times.begin(), times.end());
  std::cout << times[times.size() / 2] << ' ' << times.back() << '\n';
}
