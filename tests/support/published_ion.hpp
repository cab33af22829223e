#pragma once
// Carnall, Goodman, Rajnak & Rana, J. Chem. Phys. 90, 3443 (1989): one ion
// per reference file, "NAME = value status" lines (Table I) and, after
// "[levels]", rows "index multiplet E_obs E_calc E_model obs-calc note" (the
// appendix tables; "-" for an empty field).
#include <algorithm>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "core/atomic_file.hpp"
#include "core/text.hpp"

namespace orvane::test {

struct PublishedLevel {
    std::string multiplet;
    std::optional<double> observed;
    double calculated = 0.0;
    bool fitted = true;  // not marked "not-included"
};

struct PublishedIon {
    std::map<std::string, double> parameters;
    std::map<std::string, std::string> status;  // "fitted", "fixed", "ratio-M0(0.56)", ...
    std::vector<PublishedLevel> levels;         // in the published order
    std::vector<double> calculated;             // E_calc of every listed level, ascending
};

inline PublishedIon readPublishedIon(const std::filesystem::path& path) {
    PublishedIon ion;
    bool inLevels = false;
    const std::string text = readTextFile(path);
    std::size_t start = 0;
    while (start < text.size()) {
        const auto end = std::min(text.find('\n', start), text.size());
        const std::string line(trim(std::string_view(text).substr(start, end - start)));
        start = end + 1;
        if (line.empty() || line[0] == '#') continue;
        if (line == "[levels]") {
            inLevels = true;
            continue;
        }
        const auto fields = splitFields(line);
        if (inLevels && fields.size() >= 7) {
            const auto calculated = parseNumber(fields[3]);
            if (!calculated) continue;
            ion.levels.push_back({fields[1], parseNumber(fields[2]), *calculated, fields[6] != "not-included"});
            ion.calculated.push_back(*calculated);
        } else if (!inLevels && fields.size() >= 3 && fields[1] == "=") {
            if (const auto value = parseNumber(fields[2])) ion.parameters[fields[0]] = *value;
            if (fields.size() >= 4) ion.status[fields[0]] = fields[3];
        }
    }
    std::sort(ion.calculated.begin(), ion.calculated.end());
    return ion;
}

}  // namespace orvane::test
