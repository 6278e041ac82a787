#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

/// The calls to the stand-ins, in order, and which of their objects live. Any thread.
namespace standins {

[[gnu::format(printf, 1, 2)]] void record(const char* format, ...);

/// The calls that begin with one of the prefixes; all of them without a prefix.
std::vector<std::string> calls(const std::vector<std::string_view>& prefixes = {});
void forgetCalls();

/// Counts a live object of a kind for as long as it lives itself.
class Live {
 public:
  explicit Live(const char* kind);
  Live(const Live&) = delete;
  Live& operator=(const Live&) = delete;
  ~Live();

 private:
  const char* const kind_;
};

// For the members of objects of Objective-C, which have no initializers.
struct LiveStatusItem : Live {
  LiveStatusItem() : Live("NSStatusItem") {}
};
struct LiveSource : Live {
  LiveSource() : Live("CFRunLoopSource") {}
};
struct LivePort : Live {
  LivePort() : Live("CFMachPort") {}
};
struct LiveController : Live {
  LiveController() : Live("SPUStandardUpdaterController") {}
};
struct LiveManager : Live {
  LiveManager() : Live("IOHIDManager") {}
};
struct LiveQueue : Live {
  LiveQueue() : Live("dispatch_queue") {}
};

/// The kinds of which there are live objects, with how many.
std::map<std::string, int> liveObjects();

}  // namespace standins
