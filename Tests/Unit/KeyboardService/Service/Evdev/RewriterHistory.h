#pragma once

#include <cstdint>
#include <vector>

namespace zephlin {

/// Plays the history of a keyboard that the bytes describe, with its LED and its keys as they
/// come, and checks what the rewriter makes of it:
///
/// - what comes out are whole frames, none of them empty; keys go down and up in turn;
/// - everything but Caps Lock and repetitions comes out as it went in;
/// - without a hold each press of Caps Lock comes out once, and with the LED lit no other key
///   comes between it and its release; with a hold just those come out that were held so long;
/// - in the end no key is down.
///
/// Throws std::logic_error, which says what does not hold.
void checkHistory(const std::vector<std::uint8_t>& bytes);

}  // namespace zephlin
