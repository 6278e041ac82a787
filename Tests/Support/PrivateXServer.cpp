#include "Tests/Support/PrivateXServer.h"

#include <array>
#include <stdexcept>

namespace zephlin::test {

void PrivateXServer::setKeyboardMap(const std::vector<std::string>& arguments) {
  std::vector<std::string> command{"/usr/bin/setxkbmap"};
  command.insert(command.end(), arguments.begin(), arguments.end());
  const Outcome outcome = run(command);
  if (outcome.status != 0) {
    throw std::runtime_error("setxkbmap: " + outcome.errors);
  }
}

void PrivateXServer::tap(std::uint8_t keycode) const {
  press(keycode);
  release(keycode);
}

void PrivateXServer::letRepeat(std::uint8_t keycode) const {
  const std::array<std::uint32_t, 2> values{keycode, XCB_AUTO_REPEAT_MODE_ON};
  xcb_change_keyboard_control(connection_->get(), XCB_KB_KEY | XCB_KB_AUTO_REPEAT_MODE,
                              values.data());
}

void PrivateXServer::kill() {
  connection_.reset();
  server_.kill();
}

}  // namespace zephlin::test
