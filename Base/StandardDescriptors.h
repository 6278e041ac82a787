#pragma once

namespace zephlin {

/// Opens /dev/null in place of each of the descriptors 0 to 2 that the program was started
/// without, so that no socket or file of ours can become "standard output".
void openMissingStandardDescriptors();

}  // namespace zephlin
