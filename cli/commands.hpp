#pragma once
// Each family of `orvane` subcommands registers itself on the application.
// The functions live in cli/<family>_command.cpp; main.cpp only calls them.
#include <CLI/CLI.hpp>

#include <cmath>
#include <string>

#include "core/text.hpp"

namespace orvane::cli {

// Exit codes of every subcommand.
inline constexpr int kExitOk = 0;
inline constexpr int kExitFailure = 1;   // the operation failed (message printed)
inline constexpr int kExitUsage = 2;     // wrong command line

// Every numeric option passes this check where it enters: NaN, infinities and
// numbers that overflow are a usage error ("--shift nan"), not a NaN result.
inline const CLI::Validator kFiniteNumber(
    [](std::string& text) -> std::string {
        const auto value = parseNumber(trim(text));
        return value && std::isfinite(*value) ? std::string() : "not a finite number: " + text;
    },
    "FINITE", "finite number");

void addCalcCommand(CLI::App& app);     // orvane calc 3j|6j|9j|ck|dj
void addEigenCommand(CLI::App& app);    // orvane eigen FILE
void addParCommand(CLI::App& app);      // orvane par check FILE
void addTablesCommand(CLI::App& app);   // orvane tables build|compare|...
// Crystal-field parameter tools: orvane convert|rotate|invariants|cubic|sm
void addCrystalFieldCommands(CLI::App& app);
void addRunCommand(CLI::App& app);      // orvane run FILE.par
void addBatchCommand(CLI::App& app);    // orvane batch LIST
// orvane states|gfactors|moments|chi|intensities|jo-fit FILE.par
void addPropertyCommands(CLI::App& app);
void addFitCommand(CLI::App& app);  // orvane fit FILE.par --observed LEVELS
void addDECommand(CLI::App& app);   // orvane de FILE.par --observed LEVELS --bounds BOUNDS
void addSymmetryCommand(CLI::App& app);  // orvane symmetry GROUP

}  // namespace orvane::cli
