// The version of Orvane, taken from the project() call of the top CMakeLists.txt.
#pragma once

namespace orvane {

// "major.minor.patch", for instance "0.1.0".
const char* orvaneVersion();

}  // namespace orvane
