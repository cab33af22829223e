#include "cli/break_request.hpp"

#include <csignal>
#include <cstdlib>

namespace orvane::cli {
namespace {

volatile std::sig_atomic_t gBreakRequested = 0;

extern "C" void requestBreak(int) {
    if (gBreakRequested) std::_Exit(130);
    gBreakRequested = 1;
}

}  // namespace

BreakRequest::BreakRequest() : previous_(std::signal(SIGINT, requestBreak)) { gBreakRequested = 0; }
BreakRequest::~BreakRequest() { std::signal(SIGINT, previous_); }
bool BreakRequest::requested() const { return gBreakRequested != 0; }

}  // namespace orvane::cli
