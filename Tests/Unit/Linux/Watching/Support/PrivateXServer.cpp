#include "Tests/Unit/Linux/Watching/Support/PrivateXServer.h"

#include <xcb/xtest.h>

#include <QProcess>
#include <stdexcept>

namespace zephlin::test {

PrivateXServer::PrivateXServer()
    : display_("DISPLAY", ":" + QByteArray::fromStdString(server_.address())),
      connection_(X11Connection::open()) {
  if (!connection_) {
    throw std::runtime_error("Xvfb cannot be reached");
  }
}

void PrivateXServer::setKeyboardMap(const QStringList& arguments) {
  if (QProcess::execute("setxkbmap", arguments) != 0) {
    throw std::runtime_error("setxkbmap has failed");
  }
}

void PrivateXServer::tap(std::uint8_t keycode) {
  press(keycode);
  release(keycode);
}

void PrivateXServer::kill() {
  connection_.reset();
  server_.kill();
}

void PrivateXServer::sendKey(std::uint8_t type, std::uint8_t keycode) {
  const auto cookie = xcb_test_fake_input_checked(connection_->get(), type, keycode,
                                                  XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
  if (!connection_->succeeds(cookie)) {
    throw std::runtime_error("the X server takes no key");
  }
}

}  // namespace zephlin::test
