#pragma once
// The documentation's pictures (scripts/screenshots.sh runs this under a
// virtual X server): from a folder holding copies of the examples it runs
// Er3+ (log book and editor), fits Pr3+ to its observed levels (the fitting
// workspace), starts a differential-evolution search (caught mid-run) and
// plots the susceptibility of Er3+, saving a PNG of each into `folder`.
#include <filesystem>

#include "interactive/asker.hpp"

namespace orvane::app {

class MainWindow;

// Returns the program's exit code: 0 when every picture was written.
// `answers` is the window's asker: the tour gives it the answers of its prompts.
int takeScreenshots(MainWindow& window, ScriptedAsker& answers, const std::filesystem::path& examples,
                    const std::filesystem::path& folder);

}  // namespace orvane::app
