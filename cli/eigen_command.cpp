// orvane eigen FILE: diagonalises the Hermitian matrix of a matrix file (format
// in docs/matrix-file.md) and prints its eigenvalues and eigenvectors.
#include <iostream>
#include <memory>
#include <string>

#include "cli/commands.hpp"
#include "cli/terminal_log_book.hpp"
#include "cli/exit_code.hpp"
#include "interactive/command_line_asker.hpp"
#include "interactive/interactive_eigen.hpp"
#include "core/log_book.hpp"
#include "core/user_error.hpp"

namespace orvane::cli {

void addEigenCommand(CLI::App& app) {
    auto* command = app.add_subcommand(
        "eigen", "Eigenvalues and eigenvectors of a Hermitian matrix read from a text file");
    auto file = std::make_shared<std::string>();
    command->add_option("FILE", *file, "matrix file: the order, then one line per row")
        ->required();
    command->callback([file] {
        TerminalLogBook log(LogRole::Results);
        CommandLineAsker asker(std::cout);
        try {
            solveMatrixFile(*file, log, asker);
            setExitCode(kExitOk);
        } catch (const UserError& error) {
            std::cerr << error.title() << ": " << error.describe() << '\n';
            setExitCode(kExitFailure);
        }
    });
}

}  // namespace orvane::cli
