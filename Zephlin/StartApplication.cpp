#include "Zephlin/StartApplication.h"

#include "Platform/Platform.h"
#include "Zephlin/RunApplication.h"

namespace zephlin {

int startApplication(int argc, char** argv) {
  return runApplication(*makePlatform(argc, argv));
}

}  // namespace zephlin
