// orvane symmetry GROUP: the character table of a crystallographic point group
// and its double group, and the crystal-field parameters it allows.
#include <iostream>
#include <memory>
#include <string>

#include "cli/commands.hpp"
#include "cli/exit_code.hpp"
#include "params/point_group.hpp"
#include "params/point_group_table.hpp"

namespace orvane::cli {

void addSymmetryCommand(CLI::App& app) {
    auto* command = app.add_subcommand(
        "symmetry", "Character table and allowed crystal-field parameters of a crystallographic point group");
    auto group = std::make_shared<std::string>();
    command->add_option("GROUP", *group, "Schoenflies symbol (D3h, S6), Hermann-Mauguin symbol (-6m2) or 1..32")
        ->required();
    command->callback([group] {
        auto number = params::pointGroupNumber(*group);
        if (!number)
            if (const auto index = parseInteger(*group); index && *index >= 1 && *index <= params::kPointGroupCount)
                number = static_cast<int>(*index);
        if (!number) {
            std::cerr << "Unknown point group: " << *group << '\n';
            setExitCode(kExitFailure);
            return;
        }
        std::cout << params::pointGroupDescription(params::pointGroup(*number));
        setExitCode(kExitOk);
    });
}

}  // namespace orvane::cli
