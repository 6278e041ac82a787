#import <Foundation/Foundation.h>
#import <IOKit/IOKitLib.h>

#include <deque>
#include <map>
#include <memory>
#include <string>

#import "StandIns/Actions.h"
#import "StandIns/CallLog.h"
#import "StandIns/Knobs.h"

const mach_port_t kIOMainPortDefault = 0;

struct IONotificationPort {
  standins::Live live{"IONotificationPort"};
  dispatch_queue_t queue = nil;
};

namespace {

/// A first-match notification, by the handle of its iterator. It fires only once it is armed, which
/// reading the iterator to its end does.
struct Notification {
  standins::Live live{"io_iterator"};
  IONotificationPortRef port = nullptr;
  std::string serviceClass;
  IOServiceMatchingCallback callback = nullptr;
  void* refCon = nullptr;
  std::deque<io_object_t> waiting;
  bool isArmed = false;
};

struct Registry {
  io_object_t lastHandle = 0x1000;
  std::map<io_iterator_t, Notification> notifications;
  std::map<io_object_t, standins::Live> devices;
};

Registry& registry() {
  static Registry& instance = *new Registry;
  return instance;
}

io_object_t newDevice() {
  const io_object_t handle = ++registry().lastHandle;
  registry().devices.try_emplace(handle, "io_object");
  return handle;
}

/// Calls back through the port's queue, unless the port has gone by then.
void fire(io_iterator_t handle) {
  dispatch_async(registry().notifications.at(handle).port->queue, ^{
    const auto found = registry().notifications.find(handle);
    if (found != registry().notifications.end() && found->second.port != nullptr) {
      found->second.callback(found->second.refCon, handle);
    }
  });
}

}  // namespace

IONotificationPortRef IONotificationPortCreate(mach_port_t mainPort) {
  standins::record("IONotificationPortCreate(%u)", mainPort);
  return standins::knobs().notificationPortsAvailable ? new IONotificationPort : nullptr;
}

void IONotificationPortDestroy(IONotificationPortRef notify) {
  standins::record("IONotificationPortDestroy");
  for (auto& [handle, notification] : registry().notifications) {
    if (notification.port == notify) {
      notification.port = nullptr;
    }
  }
  delete notify;
}

void IONotificationPortSetDispatchQueue(IONotificationPortRef notify, dispatch_queue_t queue) {
  standins::record("IONotificationPortSetDispatchQueue(%s)",
                   queue == dispatch_get_main_queue() ? "main" : "other");
  notify->queue = queue;
}

CFMutableDictionaryRef IOServiceMatching(const char* name) {
  standins::record("IOServiceMatching(%s)", name);
  return reinterpret_cast<CFMutableDictionaryRef>([[NSMutableDictionary alloc]
      initWithObjectsAndKeys:[NSString stringWithUTF8String:name], @"IOProviderClass", nil]);
}

kern_return_t IOServiceAddMatchingNotification(IONotificationPortRef notifyPort,
                                               const io_name_t notificationType,
                                               CFDictionaryRef matching,
                                               IOServiceMatchingCallback callback, void* refCon,
                                               io_iterator_t* notification) {
  standins::record("IOServiceAddMatchingNotification(%s)", notificationType);
  NSDictionary* const wanted = [reinterpret_cast<NSDictionary*>(matching) autorelease];
  if (standins::knobs().matchingResult != KERN_SUCCESS) {
    return standins::knobs().matchingResult;
  }
  const io_iterator_t handle = ++registry().lastHandle;
  Notification& added = registry().notifications[handle];
  added.port = notifyPort;
  added.serviceClass = [[wanted objectForKey:@"IOProviderClass"] UTF8String];
  added.callback = callback;
  added.refCon = refCon;
  // What is there already comes first.
  added.waiting = {newDevice(), newDevice()};
  *notification = handle;
  return KERN_SUCCESS;
}

io_object_t IOIteratorNext(io_iterator_t iterator) {
  Notification& notification = registry().notifications.at(iterator);
  if (notification.waiting.empty()) {
    standins::record("IOIteratorNext -> 0");
    notification.isArmed = true;
    return IO_OBJECT_NULL;
  }
  standins::record("IOIteratorNext -> device");
  const io_object_t device = notification.waiting.front();
  notification.waiting.pop_front();
  return device;
}

kern_return_t IOObjectRelease(io_object_t object) {
  const bool isDevice = registry().devices.erase(object) == 1;
  const auto iterator = registry().notifications.find(object);
  const bool isIterator = iterator != registry().notifications.end();
  if (isIterator) {
    // It takes what has not been read from it along.
    for (const io_object_t device : iterator->second.waiting) {
      registry().devices.erase(device);
    }
    registry().notifications.erase(iterator);
  }
  standins::record("IOObjectRelease(%s)", isDevice ? "device" : isIterator ? "iterator" : "?");
  return KERN_SUCCESS;
}

void standins::attachDevice(const std::string& serviceClass) {
  for (auto& [handle, notification] : registry().notifications) {
    if (notification.port != nullptr && notification.serviceClass == serviceClass) {
      notification.waiting.push_back(newDevice());
      if (std::exchange(notification.isArmed, false)) {
        fire(handle);
      }
    }
  }
}
