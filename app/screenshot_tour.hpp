#pragma once
// The documentation's pictures: opens a parameter file, runs it as a real
// crystal field, and saves PNGs of the main window (log book and editor side
// by side) and of the editor into a folder, then ends the program
// (scripts/screenshots.sh runs it under a virtual X server).
#include <filesystem>

namespace orvane::app {

class MainWindow;

// Returns the program's exit code: 0 when every picture was written.
int takeScreenshots(MainWindow& window, const std::filesystem::path& parameterFile,
                    const std::filesystem::path& folder);

}  // namespace orvane::app
