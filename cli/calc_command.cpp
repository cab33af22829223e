// orvane calc 3j|6j|9j|ck|dj: the angular-momentum calculators. With numbers on
// the command line the result is printed once (for the symbols and C(k), the
// value alone on the last line, to full double precision); without numbers the
// interactive calculator runs on the terminal, printing its log lines there.
#include <cmath>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <fmt/core.h>

#include "cli/commands.hpp"
#include "cli/terminal_log_book.hpp"
#include "cli/exit_code.hpp"
#include "core/angular.hpp"
#include "interactive/asker.hpp"
#include "interactive/calculators.hpp"
#include "core/log_book.hpp"
#include "core/text.hpp"

namespace orvane::cli {

namespace {

using Interactive = void (*)(Asker&, LogBook&);
// Computes the value of a quantity from exactly its count of numbers.
using Evaluate = double (*)(const std::vector<double>&);

struct CalculatorCommand {
    const char* name;
    const char* description;
    const char* arguments;  // names of the numbers, for the messages
    std::size_t count;
    Evaluate evaluate;
    Interactive interactive;
};

double threeJOf(const std::vector<double>& v) { return ThreeJ(v[0], v[1], v[2], v[3], v[4], v[5]); }
double sixJOf(const std::vector<double>& v) { return SixJ(v[0], v[1], v[2], v[3], v[4], v[5]); }
double nineJOf(const std::vector<double>& v) {
    return NineJ(v[0], v[1], v[2], v[3], v[4], v[5], v[6], v[7], v[8]);
}
double reducedCkOf(const std::vector<double>& v) { return ReducedCk(v[0], v[1], v[2]); }

void runInteractive(Interactive run) {
    TerminalAsker asker(std::cin, std::cout);
    TerminalLogBook log(LogRole::Results);
    run(asker, log);
    setExitCode(kExitOk);
}

void usageError(const std::string& command, const std::string& message, int exitCode = kExitUsage) {
    std::cerr << "orvane calc " << command << ": " << message << '\n';
    setExitCode(exitCode);
}

// Largest |j| the command line accepts: the factorial table holds 0! to 79!.
constexpr double kMaxMomentum = 39.5;

// On the command line every angular momentum and projection must be an
// integer or a half-integer (within 0.001) inside the factorial table; the
// library itself keeps returning 0 for an invalid argument. Returns false
// after reporting the problem.
bool acceptMomentum(const std::string& command, const std::string& field, double value) {
    if (std::fabs(value) > kMaxMomentum) {
        usageError(command, "'" + field + "' is beyond the factorial table (|j| at most 39.5: 0! to 79!)",
                   kExitFailure);
        return false;
    }
    if (std::fabs(2.0 * value - std::round(2.0 * value)) > 0.002) {
        usageError(command, "'" + field + "' is not an integer or half-integer");
        return false;
    }
    return true;
}

void runSymbol(const CalculatorCommand& command, const std::vector<std::string>& fields) {
    if (fields.empty()) return runInteractive(command.interactive);
    if (fields.size() != command.count)
        return usageError(command.name, fmt::format("expected {} numbers ({}), got {}", command.count,
                                                    command.arguments, fields.size()));
    std::vector<double> values;
    for (const auto& field : fields) {
        const auto value = parseNumber(field);
        if (!value) return usageError(command.name, "'" + field + "' is not a number");
        if (!acceptMomentum(command.name, field, *value)) return;
        values.push_back(*value);
    }
    try {
        fmt::print("{:.17g}\n", command.evaluate(values));
        setExitCode(kExitOk);
    } catch (const FactorialRangeError& error) {
        std::cerr << "orvane calc " << command.name << ": " << error.what() << '\n';
        setExitCode(kExitFailure);
    }
}

void runRotationMatrix(const std::vector<std::string>& fields) {
    if (fields.empty()) return runInteractive(&runRotationMatrixCalculator);
    if (fields.size() < 2 || fields.size() > 4)
        return usageError("dj", fmt::format("expected 2 to 4 values (J beta [order [heading]]), got {}",
                                            fields.size()));
    // J as a number or as "n/2"; the interactive calculator's other
    // denominators ("5/3" read as 5/2) are refused here.
    const std::string& jField = fields[0];
    const auto slash = jField.find('/');
    std::optional<double> j = parseNumber(jField);
    if (slash != std::string::npos && jField.substr(slash) == "/2")
        if (const auto n = parseInteger(jField.substr(0, slash))) j = *n / 2.0;
    if (!j) return usageError("dj", "J must be a number or n/2, found '" + jField + "'");
    const double jValue = *j;
    if (!acceptMomentum("dj", jField, jValue)) return;
    std::string line;
    for (const auto& field : fields) line += field + " ";
    const auto request = readRotationMatrixRequest(line);
    if (!request)
        return usageError("dj", "J must be a number not below 0 (or n/... for n/2), beta a number in "
                                "degrees, order and heading integers");
    try {
        TerminalLogBook log(LogRole::Results);
        for (const auto& text : rotationMatrixBlock(*request)) log.appendLine(text);
        setExitCode(kExitOk);
    } catch (const FactorialRangeError& error) {
        std::cerr << "orvane calc dj: " << error.what() << '\n';
        setExitCode(kExitFailure);
    }
}

const CalculatorCommand kSymbolCommands[] = {
    {"3j", "Wigner 3j symbol (j1 j2 j3; m1 m2 m3)", "j1 j2 j3 m1 m2 m3", 6, &threeJOf, &runThreeJCalculator},
    {"6j", "Wigner 6j symbol {j1 j2 j3; j4 j5 j6}", "j1 j2 j3 j4 j5 j6", 6, &sixJOf, &runSixJCalculator},
    {"9j", "Wigner 9j symbol {j1 j2 j3; j4 j5 j6; j7 j8 j9}, read row by row",
     "j1 j2 j3 j4 j5 j6 j7 j8 j9", 9, &nineJOf, &runNineJCalculator},
    {"ck", "reduced matrix element <l||C(k)||l'>", "l k l'", 3, &reducedCkOf, &runReducedCkCalculator},
};

}  // namespace

void addCalcCommand(CLI::App& app) {
    CLI::App* calc = app.add_subcommand(
        "calc", "Angular-momentum calculators; without numbers each asks for them interactively");
    calc->require_subcommand(1);
    for (const auto& command : kSymbolCommands) {
        CLI::App* sub = calc->add_subcommand(command.name, command.description);
        auto fields = std::make_shared<std::vector<std::string>>();
        sub->add_option("values", *fields, command.arguments);
        sub->callback([&command, fields] { runSymbol(command, *fields); });
    }
    CLI::App* dj = calc->add_subcommand(
        "dj", "rotation matrix d(J)mm'(beta): J (or n/... for n/2), beta in degrees, "
              "order (below 1: from m = +J down; default 1), heading (0: none; default 1)");
    auto fields = std::make_shared<std::vector<std::string>>();
    dj->add_option("values", *fields, "J beta [order [heading]]");
    dj->callback([fields] { runRotationMatrix(*fields); });
}

}  // namespace orvane::cli
