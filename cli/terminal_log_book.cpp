#include "cli/terminal_log_book.hpp"

#include <unistd.h>

#include <algorithm>
#include <iostream>

#include <fmt/format.h>

namespace orvane::cli {

namespace {

Verbosity gVerbosity = Verbosity::Normal;
const auto gCommandStarted = std::chrono::steady_clock::now();

// A stage shows its bar once it has run this long: quick work does not flicker.
constexpr auto kBarDelay = std::chrono::milliseconds(300);
constexpr auto kRedrawInterval = std::chrono::milliseconds(100);
constexpr int kBarWidth = 30;

double secondsSinceStart() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - gCommandStarted).count();
}

std::string stageText(const std::string& name, int done, int total) {
    if (total <= 0) return fmt::format("{} {}", name, done);  // no known end
    const int filled = total > 0 ? kBarWidth * std::clamp(done, 0, total) / total : 0;
    return fmt::format("{} [{}{}] {}/{}", name, std::string(static_cast<std::size_t>(filled), '#'),
                       std::string(static_cast<std::size_t>(kBarWidth - filled), '.'), done, total);
}

}  // namespace

void setVerbosity(Verbosity verbosity) { gVerbosity = verbosity; }
Verbosity verbosity() { return gVerbosity; }

TerminalLogBook::TerminalLogBook(LogRole role)
    : role_(role), barAllowed_(gVerbosity == Verbosity::Normal && ::isatty(STDERR_FILENO) == 1) {}

TerminalLogBook::~TerminalLogBook() { clearBar(); }

void TerminalLogBook::record(const LogEvent& event) {
    if (event.kind == LogEventKind::Progress) {
        if (gVerbosity == Verbosity::Verbose)
            std::cerr << fmt::format("[{:8.2f} s] {} {}/{}\n", secondsSinceStart(), event.text, event.done,
                                     event.total);
        updateStage(event);
        return;
    }
    const bool quiet = gVerbosity == Verbosity::Quiet;
    if (event.kind == LogEventKind::Warning && quiet) {
        std::cerr << event.text << '\n';
        return;
    }
    if (quiet && role_ == LogRole::Narration) return;
    if (!isPrintedEvent(event)) return;
    clearBar();
    std::cout << event.text << '\n' << std::flush;
    drawBar();
}

void TerminalLogBook::updateStage(const LogEvent& event) {
    const auto now = std::chrono::steady_clock::now();
    auto stage = std::find_if(stages_.begin(), stages_.end(), [&](const Stage& s) { return s.name == event.text; });
    if (event.total > 0 && event.done >= event.total) {
        if (stage != stages_.end()) stages_.erase(stage);
        if (stages_.empty()) clearBar();
        return;
    }
    if (stage == stages_.end()) stages_.push_back({event.text, event.done, event.total, now});
    else {
        stage->done = event.done;
        stage->total = event.total;
    }
    if (now - lastDrawn_ >= kRedrawInterval) drawBar();
}

void TerminalLogBook::drawBar() {
    if (!barAllowed_ || stages_.empty()) return;
    const auto now = std::chrono::steady_clock::now();
    if (now - stages_.front().started < kBarDelay) return;
    std::string line;
    for (const auto& stage : stages_) line += (line.empty() ? "" : " | ") + stageText(stage.name, stage.done, stage.total);
    std::cerr << "\r\x1b[K" << line << std::flush;
    barShown_ = true;
    lastDrawn_ = now;
}

void TerminalLogBook::clearBar() {
    if (!barShown_) return;
    std::cerr << "\r\x1b[K" << std::flush;
    barShown_ = false;
}

}  // namespace orvane::cli
