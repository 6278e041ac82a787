#include "Platform/Linux/Watching/X11Connection.h"

#include <QCoreApplication>
#include <QEvent>

namespace zephlin {

std::unique_ptr<X11Connection> X11Connection::open() {
  int screenNumber = 0;
  // Never null, but possibly in an error state.
  Handle connection(xcb_connect(nullptr, &screenNumber));
  if (xcb_connection_has_error(connection.get()) != 0) {
    return nullptr;
  }
  auto screen = xcb_setup_roots_iterator(xcb_get_setup(connection.get()));
  while (screenNumber-- > 0) {
    xcb_screen_next(&screen);
  }
  return std::unique_ptr<X11Connection>(
      new X11Connection(std::move(connection), screen.data->root));
}

const xcb_query_extension_reply_t* X11Connection::extension(xcb_extension_t* id) const {
  const auto* reply = xcb_get_extension_data(get(), id);
  return reply != nullptr && reply->present != 0 ? reply : nullptr;
}

bool X11Connection::succeeds(xcb_void_cookie_t cookie) const {
  const X11Message<xcb_generic_error_t> error(xcb_request_check(get(), cookie));
  return !error && xcb_connection_has_error(get()) == 0;
}

bool X11Connection::useXkb() const {
  if (extension(&xcb_xkb_id) == nullptr) {
    return false;
  }
  const auto cookie = xcb_xkb_use_extension(get(), XCB_XKB_MAJOR_VERSION, XCB_XKB_MINOR_VERSION);
  const X11Message<xcb_xkb_use_extension_reply_t> reply(
      xcb_xkb_use_extension_reply(get(), cookie, nullptr));
  return reply && reply->supported != 0;
}

void X11Connection::watch(const std::function<void()>& eventsMayHaveArrived) {
  notifier_ =
      std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(get()), QSocketNotifier::Read);
  QObject::connect(notifier_.get(), &QSocketNotifier::activated, eventsMayHaveArrived);
  // Events may have arrived together with earlier replies.
  QCoreApplication::postEvent(notifier_.get(), new QEvent(QEvent::SockAct));
}

std::vector<X11Message<xcb_generic_event_t>> X11Connection::takeEvents() {
  std::vector<X11Message<xcb_generic_event_t>> events;
  while (auto event = X11Message<xcb_generic_event_t>(xcb_poll_for_event(get()))) {
    events.push_back(std::move(event));
  }
  if (xcb_connection_has_error(get()) != 0) {
    notifier_->setEnabled(false);
  }
  return events;
}

}  // namespace zephlin
