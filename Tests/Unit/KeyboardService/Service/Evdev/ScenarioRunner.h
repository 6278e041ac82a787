#pragma once

#include <string>

namespace zephlin {

/// Plays a scenario and returns it with what really comes out: the lines that begin with "  >" are
/// results, all others are kept. A scenario that describes the rewriter rightly comes back as it
/// was.
///
///   # a comment
///   rule hold=0 gap=5                      milliseconds; in force for later presses
///   led on                                 the LED of Caps Lock, which is off at first
///   10 scan 58 + press KEY_CAPSLOCK        at 10 ms a frame; "press", "release", "repeat" a key
///   20 press KEY_A + dropped               the frame ends with SYN_DROPPED
///   30 press KEY_B ...                     the frame is not finished yet
///   release all
///     > 10 press KEY_A                     what comes out, and when: one line for each frame
///
/// Deadlines are kept to the millisecond. Throws std::runtime_error if a line is not understood.
std::string playScenario(const std::string& scenario);

}  // namespace zephlin
