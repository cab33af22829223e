#include "cli/property_run.hpp"

#include <iostream>

#include "cli/commands.hpp"
#include "cli/terminal_log_book.hpp"
#include "cli/exit_code.hpp"
#include "core/atomic_file.hpp"
#include "core/user_error.hpp"
#include "spreadsheet/csv_format.hpp"

namespace orvane::cli {

void addPropertyRunOptions(CLI::App& command, PropertyRunOptions& options) {
    command.add_option("FILE", options.file, "parameter file (.par)")->required();
    auto* freeIon = command.add_flag("--free-ion", options.freeIon, "work on the free-ion J-multiplets");
    command.add_flag("--complex", options.complex, "complex crystal field (Im Bkq kept)")->excludes(freeIon);
    command.add_option("--gs", options.spinG, "spin g factor g_s (default 2.0023193043622)")->check(CLI::PositiveNumber)->check(kFiniteNumber);
    command.add_option("--tables", options.tableDirectory, "table directory (default: the delivered one)");
    command.add_option("--vectors", options.vectors,
                       "state-vector file (.ev) of an earlier run of FILE: its stored states instead of a new solve");
    command.add_option("--csv", options.csv, "also write the results as a CSV table to FILE (- for standard output)");
    command.add_option("--xlsx", options.xlsx, "also write the results as an .xlsx workbook to FILE (dated, formatted)");
    command.add_option("--accuracy", options.accuracy,
                       "decimal places of printed g-factors, moments and susceptibilities, or a limit such as 1E-5");
}

LogBook& reportLog(const PropertyRunOptions& options) {
    static TerminalLogBook out(LogRole::Results);
    static NullLogBook none;
    if (options.csv == "-") return none;
    return out;
}

void writeTable(const PropertyRunOptions& options, const PropertyTable& table, const Spreadsheet* exported) {
    if (options.csv == "-") std::cout << csvText(table.sheet());
    else if (!options.csv.empty())
        writeFileAtomically(options.csv, csvText(table.sheet()));
    if (!options.xlsx.empty())
    {
        if (exported) exported->save(options.xlsx);
        else saveDatedTable(table.sheet(), options.xlsx);
    }
}

void runPropertyCommand(const std::function<void()>& body) {
    try {
        body();
        setExitCode(kExitOk);
    } catch (const UserError& error) {
        std::cerr << error.title() << ": " << error.describe() << '\n';
        setExitCode(kExitFailure);
    } catch (const std::exception& error) {
        std::cerr << "Error: " << error.what() << '\n';
        setExitCode(kExitFailure);
    }
}

}  // namespace orvane::cli
