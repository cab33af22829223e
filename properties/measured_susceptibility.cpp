#include "properties/measured_susceptibility.hpp"

#include <sstream>

#include "core/atomic_file.hpp"
#include "core/text.hpp"
#include "core/user_error.hpp"

namespace orvane {

namespace {

constexpr const char* kTitle = "Magnetic susceptibility";

std::vector<std::string> csvFields(std::string_view line) {
    std::vector<std::string> fields;
    std::string field;
    for (char c : line) {
        if (c == ',' || c == ';' || c == '\t') {
            fields.emplace_back(trim(field));
            field.clear();
        } else if (c != '"') {
            field += c;
        }
    }
    fields.emplace_back(trim(field));
    return fields;
}

}  // namespace

MeasuredSusceptibilityData parseMeasuredSusceptibility(const std::string& text, const std::string& fileName,
                                                       std::size_t rowLimit) {
    std::istringstream in(text);
    std::string raw;
    int number = 0, temperatureColumn = -1, averageColumn = -1;
    while (temperatureColumn < 0 && std::getline(in, raw)) {
        ++number;
        if (trim(raw).empty()) continue;
        const auto header = csvFields(raw);
        for (std::size_t c = 0; c < header.size(); ++c) {
            if (temperatureColumn < 0 && icontains(header[c], "Temperature")) temperatureColumn = static_cast<int>(c);
            if (averageColumn < 0 && icontains(header[c], "Average")) averageColumn = static_cast<int>(c);
        }
        if (temperatureColumn < 0 || averageColumn < 0)
            throw UserError(kTitle, "Incorrect structure of Excel for the magnetic susceptibility",
                            FileLocation{fileName, number});
    }
    if (temperatureColumn < 0)
        throw UserError(kTitle, fileName + ": Incorrect structure of Excel for the magnetic susceptibility");
    MeasuredSusceptibilityData data;
    while (std::getline(in, raw)) {
        ++number;
        if (trim(raw).empty()) continue;
        if (data.points.size() == rowLimit) {
            ++data.rowsBeyondLimit;
            continue;
        }
        const auto fields = csvFields(raw);
        const auto column = [&](int c) {
            return c < static_cast<int>(fields.size()) ? parseNumber(fields[c]) : std::nullopt;
        };
        const auto t = column(temperatureColumn), chi = column(averageColumn);
        if (!t || !chi || *t <= 0.0)
            throw UserError(kTitle, "expected a positive temperature and a susceptibility", FileLocation{fileName, number});
        data.points.push_back({*t, *chi});
    }
    return data;
}

MeasuredSusceptibilityData readMeasuredSusceptibility(const std::filesystem::path& path, std::size_t rowLimit) {
    return parseMeasuredSusceptibility(readTextFile(path), path.string(), rowLimit);
}

}  // namespace orvane
