#include "core/local_time.hpp"

namespace orvane {

std::tm localTime(std::chrono::system_clock::time_point when) {
    const std::time_t t = std::chrono::system_clock::to_time_t(when);
    std::tm local{};
    localtime_r(&t, &local);  // the reentrant form: the library may run on several threads
    return local;
}

}  // namespace orvane
