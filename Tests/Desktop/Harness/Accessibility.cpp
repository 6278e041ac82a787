#include "Tests/Desktop/Harness/Accessibility.h"

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <algorithm>
#include <stdexcept>

#include "Tests/Desktop/Harness/Waiting.h"

namespace zephlin::test {
namespace {

QString busAddress(const BusConnection& sessionBus) {
  return sessionBus.call({"org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus", "GetAddress"})
      .at(0)
      .toString();
}

}  // namespace

Environment accessible() {
  return {{"QT_LINUX_ACCESSIBILITY_ALWAYS_ON", "1"}};
}

Accessibility::Accessibility(const BusConnection& sessionBus) : bus_(busAddress(sessionBus)) {}

std::vector<std::string> Accessibility::namesIn(pid_t process) const {
  std::vector<std::string> names;
  for (const Object& object : objectsIn(process)) {
    names.push_back(object.name);
  }
  return names;
}

void Accessibility::waitForName(pid_t process, const std::string& name) const {
  waitUntil("something named " + name, [&] {
    const std::vector<std::string> names = namesIn(process);
    return std::find(names.begin(), names.end(), name) != names.end();
  });
}

void Accessibility::push(pid_t process, const std::string& button) const {
  waitForName(process, button);
  for (const Object& object : objectsIn(process)) {
    if (object.name == button) {
      constexpr int firstAction = 0;
      call(object, "Action", "DoAction", {firstAction});
      return;
    }
  }
}

void Accessibility::addDescendants(const Object& parent, std::vector<Object>& found) const {
  for (const Object& child : childrenOf(parent)) {
    found.push_back(child);
    addDescendants(child, found);
  }
}

std::vector<Accessibility::Object> Accessibility::childrenOf(const Object& parent) const {
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

std::vector<Accessibility::Object> Accessibility::objectsIn(pid_t process) const {
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

QVariantList Accessibility::call(const Object& object, const char* interface, const char* method,
                                 const QVariantList& arguments) const {
  return bus_.call({object.service, object.path, QString("org.a11y.atspi.") + interface, method},
                   arguments);
}

}  // namespace zephlin::test
