#include "core/version.hpp"

#ifndef ORVANE_VERSION
#error "ORVANE_VERSION is set by core/CMakeLists.txt from the project version"
#endif

namespace orvane {

const char* orvaneVersion() { return ORVANE_VERSION; }

}  // namespace orvane
