#include "Tests/Unit/Linux/Watching/Support/MockedDevices.h"

#include <linux/input.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace zephlin::test {

namespace {

constexpr const char* keyboardProperties = "E: ID_INPUT=1\nE: ID_INPUT_KEYBOARD=1\n";
constexpr const char* pointerProperties = "E: ID_INPUT=1\nE: ID_INPUT_MOUSE=1\n";

std::string name(int number) {
  return "event" + std::to_string(number);
}

/// The answers of umockdev to libevdev's questions: name, what is returned, bytes.
std::string bits(const std::string& question, std::size_t bytes, const std::string& first = "") {
  std::string text = first;
  text.resize(bytes * 2, '0');
  return question + " " + std::to_string(bytes) + " " + text + "\n";
}

std::string commonAnswers() {
  return "EVIOCGVERSION 0 01000100\nEVIOCGID 0 0300341201000100\n" + bits("EVIOCGNAME", 255, "6B") +
         bits("EVIOCGPHYS", 255, "6B") + bits("EVIOCGUNIQ", 255, "6B") + bits("EVIOCGPROP", 8) +
         bits("EVIOCGBIT(2)", 8) + bits("EVIOCGBIT(3)", 8) + bits("EVIOCGBIT(4)", 8) +
         bits("EVIOCGBIT(5)", 8) + bits("EVIOCGBIT(18)", 8) + bits("EVIOCGBIT(21)", 16) +
         bits("EVIOCGKEY", 96) + bits("EVIOCGLED", 8) + bits("EVIOCGSW", 8);
}

// Types: synchronisation, keys and, with 02 in the third byte, lights. Keys: A and Caps Lock.
std::string keyboardAnswers(MockedDevices::Leds leds) {
  const bool hasLed = leds == MockedDevices::Leds::CapsLock;
  return commonAnswers() + bits("EVIOCGBIT(0)", 8, hasLed ? "030002" : "03") +
         bits("EVIOCGBIT(1)", 96, "0000004000000004") +
         bits("EVIOCGBIT(17)", 8, hasLed ? "02" : "");
}

}  // namespace

MockedDevices::MockedDevices() {
  // Every user may look around in it.
  std::filesystem::permissions(rootFolder(), std::filesystem::perms(0755));
}

std::string MockedDevices::addKeyboard(int number, Leds leds) {
  const std::string path = addEventDevice(number, keyboardProperties);
  answer(number, keyboardAnswers(leds));
  return path;
}

void MockedDevices::addForbiddenKeyboard(int number) {
  addEventDevice(number, keyboardProperties);
  const std::string root = rootFolder();
  std::filesystem::permissions(root + node(number), std::filesystem::perms::none);
  // umockdev's own connection must succeed even so.
  std::filesystem::permissions(root + "/ioctl/_default", std::filesystem::perms::all);
}

std::string MockedDevices::addPointer(int number) {
  const std::string path = addEventDevice(number, pointerProperties);
  // It claims to have a Caps Lock key, which must not count.
  answer(number, keyboardAnswers(Leds::CapsLock));
  return path;
}

std::string MockedDevices::add(const std::string& subsystem) {
  const std::string path = "/devices/" + subsystem + "/0003:046D:C31C.0001";
  umockdev_testbed_add_from_string(
      testbed_.get(), ("P: " + path + "\nE: SUBSYSTEM=" + subsystem + "\n").c_str(), nullptr);
  return "/sys" + path;
}

void MockedDevices::report(int number, EventKind kind, const std::vector<int>& values) {
  const int descriptor = umockdev_testbed_get_dev_fd(testbed_.get(), node(number).c_str());
  for (const int value : values) {
    std::vector<input_event> events(2);
    events[0].type = static_cast<std::uint16_t>(kind.type);
    events[0].code = static_cast<std::uint16_t>(kind.code);
    events[0].value = value;
    const std::size_t bytes = events.size() * sizeof(input_event);
    if (::write(descriptor, events.data(), bytes) != static_cast<ssize_t>(bytes)) {
      throw std::runtime_error("the device takes no events");
    }
  }
}

void MockedDevices::remove(int number) {
  ::close(umockdev_testbed_get_dev_fd(testbed_.get(), node(number).c_str()));
}

std::string MockedDevices::rootFolder() const {
  const std::unique_ptr<gchar, decltype(&g_free)> folder(
      umockdev_testbed_get_root_dir(testbed_.get()), g_free);
  return folder.get();
}

std::string MockedDevices::node(int number) {
  return "/dev/input/" + name(number);
}

std::string MockedDevices::addEventDevice(int number, const std::string& properties) {
  const std::string path = "/devices/input/input" + std::to_string(number) + "/" + name(number);
  const std::string description = "P: " + path + "\nN: input/" + name(number) +
                                  "\nE: DEVNAME=" + node(number) + "\nE: SUBSYSTEM=input\n" +
                                  properties;
  if (!umockdev_testbed_add_from_string(testbed_.get(), description.c_str(), nullptr)) {
    throw std::runtime_error("umockdev does not take the device");
  }
  return "/sys" + path;
}

void MockedDevices::answer(int number, const std::string& ioctls) {
  const std::string file = folder_.file(name(number));
  std::ofstream(file) << "@DEV " << node(number) << "\n" << ioctls;
  if (!umockdev_testbed_load_ioctl(testbed_.get(), nullptr, file.c_str(), nullptr)) {
    throw std::runtime_error("umockdev does not take the answers");
  }
}

}  // namespace zephlin::test
