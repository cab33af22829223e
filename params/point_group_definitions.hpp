#pragma once
// Internal to params: the generators of each point group in its standard
// orientation and the naming of its irreducible representations.
#include <string_view>
#include <vector>

#include <Eigen/Dense>

#include "params/point_group.hpp"

namespace orvane::params {

struct GeneratorSpec {
    Eigen::Vector3d axis;
    double degrees = 0.0;
    bool improper = false;
};

// The proper rotation group onto which the proper parts of a group map one to
// one (C2v -> D2, Td -> O, D3h -> D6, ...), or the proper subgroup of a group
// with the inversion (D4h -> D4). Its Koster numbering names the irreps.
enum class LabelGroup { C1, C2, C3, C4, C6, D2, D3, D4, D6, T, O };

struct GroupDefinition {
    std::string_view name;
    std::string_view alias;  // another Schoenflies name, or empty
    std::string_view hermannMauguin;
    std::vector<GeneratorSpec> generators;
    LabelGroup labels;
    // Mulliken names of the single-valued irreps in Koster order where they
    // differ from those of the label group (Cs, C2v, C3h, D3h, C6v); empty otherwise.
    std::vector<std::string_view> singleValuedNames;
};

const GroupDefinition& groupDefinition(int number);  // 1..32

// Attaches Koster numbers, parities and Mulliken names, and sorts the irreps.
void nameIrreps(PointGroup& group, const GroupDefinition& definition);

}  // namespace orvane::params
