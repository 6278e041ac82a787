#include "Zephlin/StartApplication.h"

#include "Platform/Platform.h"
#include "Zephlin/RunApplication.h"

int zephlinStartApplication(int argc, char** argv) {
  return zephlin::runApplication(*zephlin::makePlatform(argc, argv));
}
