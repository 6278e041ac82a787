#pragma once

#include <sys/types.h>

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QRect>
#include <algorithm>
#include <stdexcept>
#include <string>
#include <vector>

#include "Tests/Desktop/Harness/Program.h"
#include "Tests/Desktop/Harness/Waiting.h"
#include "Tests/Support/BusConnection.h"

namespace zephlin::test {

inline QString busAddress(const BusConnection& sessionBus) {
  return sessionBus.call({"org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus", "GetAddress"})
      .at(0)
      .toString();
}

/// What a program must have in its environment to show screen readers its windows.
inline Environment accessible() {
  return {{"QT_LINUX_ACCESSIBILITY_ALWAYS_ON", "1"}};
}

/// The windows of programs as a screen reader finds them (AT-SPI).
class Accessibility {
 public:
  explicit Accessibility(const BusConnection& sessionBus) : bus_(busAddress(sessionBus)) {}

  /// The names of all that the process shows: windows, texts, buttons.
  [[nodiscard]] std::vector<std::string> namesIn(pid_t process) const {
    std::vector<std::string> names;
    for (const Object& object : objectsIn(process)) {
      names.push_back(object.name);
    }
    return names;
  }

  /// The first of them that begins so, or an empty text.
  [[nodiscard]] std::string nameBeginning(pid_t process, const std::string& beginning) const {
    for (const std::string& name : namesIn(process)) {
      if (name.starts_with(beginning)) {
        return name;
      }
    }
    return {};
  }

  /// The AT-SPI role of the object with this name; empty if no object has it.
  [[nodiscard]] std::string roleOf(pid_t process, const std::string& name) const {
    const Object object = objectNamed(process, name);
    return object.path.isEmpty()
               ? std::string()
               : call(object, "Accessible", "GetRoleName").at(0).toString().toStdString();
  }

  /// Where it is on the screen.
  [[nodiscard]] QRect placeOf(pid_t process, const std::string& name) const {
    constexpr uint onTheScreen = 0;
    const auto extents = qvariant_cast<QDBusArgument>(
        call(objectNamed(process, name), "Component", "GetExtents", {onTheScreen}).at(0));
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    extents.beginStructure();
    extents >> x >> y >> width >> height;
    extents.endStructure();
    return {x, y, width, height};
  }

  void waitForName(pid_t process, const std::string& name) const {
    waitUntil("something named " + name, [&] {
      const std::vector<std::string> names = namesIn(process);
      return std::find(names.begin(), names.end(), name) != names.end();
    });
  }

  /// Waits until there is a button with this name, and pushes it.
  void push(pid_t process, const std::string& button) const {
    waitForName(process, button);
    constexpr int firstAction = 0;
    call(objectNamed(process, button), "Action", "DoAction", {firstAction});
  }

 private:
  struct Object {
    QString service;
    QString path;
    std::string name;
  };

  /// Empty if nothing is found.
  [[nodiscard]] Object objectNamed(pid_t process, const std::string& name) const {
    for (const Object& object : objectsIn(process)) {
      if (object.name == name) {
        return object;
      }
    }
    return {};
  }

  void addDescendants(const Object& parent, std::vector<Object>& found) const {
    for (const Object& child : childrenOf(parent)) {
      found.push_back(child);
      addDescendants(child, found);
    }
  }

  [[nodiscard]] std::vector<Object> childrenOf(const Object& parent) const {
    const auto list = qvariant_cast<QDBusArgument>(call(parent, "Accessible", "GetChildren").at(0));
    std::vector<Object> children;
    list.beginArray();
    while (!list.atEnd()) {
      Object child;
      QDBusObjectPath path;
      list.beginStructure();
      list >> child.service >> path;
      list.endStructure();
      child.path = path.path();
      child.name = bus_.property({child.service, child.path, "org.a11y.atspi.Accessible", "Name"})
                       .toString()
                       .toStdString();
      children.push_back(child);
    }
    list.endArray();
    return children;
  }

  [[nodiscard]] std::vector<Object> objectsIn(pid_t process) const {
    std::vector<Object> found;
    try {
      for (const Object& program :
           childrenOf({"org.a11y.atspi.Registry", "/org/a11y/atspi/accessible/root", ""})) {
        if (bus_.ownerOf(program.service) == process) {
          addDescendants(program, found);
        }
      }
    } catch (const std::runtime_error&) {
      // What is being destroyed while it is asked does not answer.
      return {};
    }
    return found;
  }

  QVariantList call(const Object& object, const char* interface, const char* method,
                    const QVariantList& arguments = {}) const {
    return bus_.call({object.service, object.path, QString("org.a11y.atspi.") + interface, method},
                     arguments);
  }

  BusConnection bus_;
};

}  // namespace zephlin::test
