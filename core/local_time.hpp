#pragma once
// The local calendar time of a clock reading, as the dates and times of the
// log book and the result files print it (formatDate and formatTime of
// core/number_format.hpp).
#include <chrono>
#include <ctime>

namespace orvane {

std::tm localTime(std::chrono::system_clock::time_point when);

}  // namespace orvane
