#include "report/energy_file.hpp"

#include <cmath>
#include <ostream>
#include <sstream>

#include <fmt/format.h>

#include "core/atomic_file.hpp"
#include "core/text.hpp"
#include "core/user_error.hpp"

namespace orvane {

namespace {

constexpr ErrorCategory kReadError = ErrorCategory::Main;
// Energies written with 6 decimals may tie or step back by rounding only.
constexpr double kOrderTolerance = 2e-6;

[[noreturn]] void fail(const std::string& file, int line, const std::string& message) {
    throw UserError(kReadError, message, FileLocation{file, line});
}

}  // namespace

void writeEnergyText(std::ostream& out, const std::string& title, const std::vector<ResultLevel>& levels,
                     double energyShift, int fold) {
    fmt::memory_buffer buffer;
    fmt::format_to(std::back_inserter(buffer), "{}\n", title);
    int number = 0;
    for (const auto& level : levels) {
        const std::string mu =
            level.residue < 0 ? "-" : std::to_string(twiceCrystalQuantumNumber(level.residue, fold));
        fmt::format_to(std::back_inserter(buffer), "{:6d} {:18.6f} {:4d} {:>4} {}\n", ++number,
                       level.energy + energyShift, level.twiceJ, mu, level.label);
    }
    out.write(buffer.data(), static_cast<std::streamsize>(buffer.size()));
}

EnergyFileContents parseEnergyText(const std::string& text, const std::string& file) {
    EnergyFileContents contents;
    std::istringstream in(text);
    std::string line;
    int lineNumber = 0;
    if (!std::getline(in, line)) fail(file, 1, "the energy file is empty (no title line)");
    ++lineNumber;
    contents.title = std::string(trim(line));
    while (std::getline(in, line)) {
        ++lineNumber;
        const auto fields = splitFields(line);
        if (fields.empty()) continue;
        EnergyFileLevel level;
        const auto number = parseInteger(fields[0]);
        if (!number) fail(file, lineNumber, "state number expected, found \"" + fields[0] + "\"");
        const int expected = static_cast<int>(contents.levels.size()) + 1;
        if (*number != expected)
            fail(file, lineNumber, fmt::format("state number {} out of sequence (expected {})", *number, expected));
        level.number = *number;
        if (fields.size() < 2) fail(file, lineNumber, "energy missing");
        const auto energy = parseNumber(fields[1]);
        if (!energy) fail(file, lineNumber, "energy is not a finite number: \"" + fields[1] + "\"");
        if (!contents.levels.empty() && *energy < contents.levels.back().energy - kOrderTolerance)
            fail(file, lineNumber, "energies are not in ascending order");
        level.energy = *energy;
        if (fields.size() > 2) {
            level.twiceJ = parseInteger(fields[2]);
            if (!level.twiceJ || *level.twiceJ < 0)
                fail(file, lineNumber, "2J must be a non-negative integer: \"" + fields[2] + "\"");
        }
        if (fields.size() > 3 && fields[3] != "-") {
            level.twiceMu = parseInteger(fields[3]);
            if (!level.twiceMu) fail(file, lineNumber, "2mu must be an integer or \"-\": \"" + fields[3] + "\"");
        }
        if (fields.size() > 4) level.label = fields[4];
        contents.levels.push_back(std::move(level));
    }
    return contents;
}

EnergyFileContents readEnergyFile(const std::filesystem::path& path) {
    return parseEnergyText(readTextFile(path, 256u * 1024u * 1024u), path.string());
}

}  // namespace orvane
