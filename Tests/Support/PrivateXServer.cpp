#include "Tests/Support/PrivateXServer.h"

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

void PrivateXServer::kill() {
  connection_.reset();
  server_.kill();
}

}  // namespace zephlin::test
