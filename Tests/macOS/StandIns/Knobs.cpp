#include "StandIns/Knobs.h"

namespace standins {

Knobs& knobs() {
  static Knobs instance;
  return instance;
}

}  // namespace standins
