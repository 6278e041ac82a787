#pragma once

namespace zephlin {

/// Tells the session manager (XSMP) at the session's end that nothing is to be saved, and not to
/// start the application anew with the next session: that is for the login service. Main thread,
/// once, with a QGuiApplication.
void takeNoPartInSessions();

}  // namespace zephlin
