#pragma once
// The example line at the end of every subcommand's --help.
#include <CLI/CLI.hpp>

#include <optional>
#include <string>

namespace orvane::cli {

// The example of a subcommand given by its path below `orvane` ("tables build").
std::optional<std::string> helpExample(const std::string& commandPath);

// Puts each subcommand's example (recursively) into its help footer.
void addHelpExamples(CLI::App& command);

}  // namespace orvane::cli
