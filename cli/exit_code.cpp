#include "cli/exit_code.hpp"

namespace orvane::cli {
namespace {
int gExitCode = 0;
}
int exitCode() { return gExitCode; }
void setExitCode(int code) { gExitCode = code; }
}  // namespace orvane::cli
