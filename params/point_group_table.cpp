#include "params/point_group_table.hpp"

#include <algorithm>
#include <cmath>

#include <fmt/format.h>

#include "params/crystal_field_symmetry.hpp"

namespace orvane::params {

std::string characterText(std::complex<double> value) {
    auto text = [](double x) {
        const double rounded = std::round(x * 1000.0) / 1000.0;
        return fmt::format("{:g}", rounded == 0.0 ? 0.0 : rounded);
    };
    if (std::abs(value.imag()) < 5e-4) return text(value.real());
    std::string imaginary = text(value.imag());
    if (imaginary == "1" || imaginary == "-1") imaginary.pop_back();  // "i", "-i"
    if (std::abs(value.real()) < 5e-4) return imaginary + "i";
    return text(value.real()) + (!imaginary.empty() && imaginary.front() == '-' ? "" : "+") + imaginary + "i";
}

std::string pointGroupDescription(const PointGroup& group) {
    std::string out = fmt::format(
        "Point group {} ({}), \"/ptgp= {}\": order {}, double group {}, {} classes, fold of the z axis {}\n",
        group.name, group.hermannMauguin, group.number, group.order(), group.elements.size(), group.classes.size(),
        group.fold);
    std::vector<std::vector<std::string>> rows;
    std::vector<std::string> header = {"Koster", "Mulliken", "dim"};
    for (const auto& cls : group.classes) header.push_back(cls.name);
    rows.push_back(header);
    for (const auto& irrep : group.irreps) {
        std::vector<std::string> row = {kosterName(irrep), irrep.mulliken.empty() ? "-" : irrep.mulliken,
                                        std::to_string(irrep.dimension)};
        for (const auto& value : irrep.characters) row.push_back(characterText(value));
        rows.push_back(row);
    }
    std::vector<std::size_t> width(header.size(), 0);
    for (const auto& row : rows)
        for (std::size_t c = 0; c < row.size(); ++c) width[c] = std::max(width[c], row[c].size());
    for (const auto& row : rows) {
        std::string line;
        for (std::size_t c = 0; c < row.size(); ++c) line += fmt::format("{:>{}}  ", row[c], width[c]);
        line.erase(line.find_last_not_of(' ') + 1);
        out += line + "\n";
    }
    out += "Allowed crystal-field parameters:";
    for (const auto& component : allowedCrystalFieldComponents(group))
        out += fmt::format(" {}B{}{}", component.imaginary ? "Im" : "", component.k, component.q);
    return out + "\n";
}

}  // namespace orvane::params
