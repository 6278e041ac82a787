#include "ZephlinCore/SignalMask.h"

namespace zephlin {

AllSignalsBlocked::AllSignalsBlocked() noexcept : previous_() {
  sigset_t all;
  sigfillset(&all);
  ::pthread_sigmask(SIG_SETMASK, &all, &previous_);
}

AllSignalsBlocked::~AllSignalsBlocked() {
  ::pthread_sigmask(SIG_SETMASK, &previous_, nullptr);
}

}  // namespace zephlin
