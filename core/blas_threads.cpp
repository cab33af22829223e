#include "core/blas_threads.hpp"

extern "C" {
int openblas_get_num_threads(void);
void openblas_set_num_threads(int);
}

namespace orvane {

SingleThreadedBlas::SingleThreadedBlas() : previous_(openblas_get_num_threads()) { openblas_set_num_threads(1); }
SingleThreadedBlas::~SingleThreadedBlas() { openblas_set_num_threads(previous_); }

}  // namespace orvane
