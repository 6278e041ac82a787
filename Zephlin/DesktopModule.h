#pragma once

/// The one symbol of the module that holds the application: zephlin::startApplication, by a name
/// and with types that do not depend on a C++ library.
extern "C" int zephlinStartApplication(int argc, char** argv);
