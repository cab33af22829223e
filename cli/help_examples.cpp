// One worked example per subcommand, shown at the end of its --help. The
// paths are those of the bundled examples, run from the source folder.
#include "cli/help_examples.hpp"

#include <map>
#include <string>

namespace orvane::cli {

namespace {

const std::map<std::string, std::string>& examples() {
    static const std::map<std::string, std::string> table = {
        {"run", "orvane run examples/Er3plus-LaF3.par --show 10"},
        {"batch", "orvane batch runs.txt --complex"},
        {"calc", "orvane calc 3j 3 3 2 1 -1 0"},
        {"calc 3j", "orvane calc 3j 3 3 2 1 -1 0"},
        {"calc 6j", "orvane calc 6j 3 3 2 3 3 4"},
        {"calc 9j", "orvane calc 9j 1 1 0 2 2 2 3 3 2"},
        {"calc ck", "orvane calc ck 3 2 3"},
        {"calc dj", "orvane calc dj 7/2 90"},
        {"eigen", "orvane eigen examples/matrix-hermitian-4.txt"},
        {"par", "orvane par check examples/Pr3plus-LaF3.par"},
        {"par check", "orvane par check examples/Pr3plus-LaF3.par"},
        {"par write", "orvane par write examples/Pr3plus-LaF3.par /tmp/Pr-normal.par"},
        {"tables", "orvane tables build --n 3"},
        {"tables build", "orvane tables build --n 3"},
        {"tables compare", "orvane tables compare --reference published/ --n 3"},
        {"tables check", "orvane tables check uk"},
        {"tables cfp", "orvane tables cfp"},
        {"tables rme", "orvane tables rme"},
        {"convert", "orvane convert wybourne2stevens examples/Pr3plus-LaF3.par -o /tmp/Pr-stevens.par"},
        {"convert stevens2wybourne", "orvane convert stevens2wybourne /tmp/Pr-stevens.par -o /tmp/Pr-wybourne.par"},
        {"convert wybourne2stevens", "orvane convert wybourne2stevens examples/Pr3plus-LaF3.par -o /tmp/Pr-stevens.par"},
        {"convert wybourne2unit", "orvane convert wybourne2unit examples/Pr3plus-LaF3.par -o /tmp/Pr-unit.par"},
        {"convert unit2wybourne", "orvane convert unit2wybourne /tmp/Pr-unit.par -o /tmp/Pr-wybourne.par"},
        {"convert units", "orvane convert units --from cm-1 --to meV examples/Pr3plus-LaF3.par -o /tmp/Pr-meV.par"},
        {"convert orthogonal", "orvane convert orthogonal examples/Pr3plus-LaF3.par"},
        {"rotate", "orvane rotate examples/Nd3plus-LaF3.par --euler 0 90 0 -o /tmp/Nd-rotated.par"},
        {"invariants", "orvane invariants examples/Er3plus-LaF3.par"},
        {"cubic", "orvane cubic examples/Er3plus-LaF3.par --axis 001"},
        {"sm", "orvane sm examples/cube-eight-ligands.lig --r0 2.4 --bk 400 300 200 --tk 7 4 6 -o /tmp/cube.par"},
        {"sm estimate", "orvane sm estimate examples/distorted-octahedron.lig examples/Er3plus-LaF3.par --tk 7 4 6"},
        {"states", "orvane states examples/Er3plus-LaF3.par --state 1"},
        {"gfactors", "orvane gfactors examples/Er3plus-LaF3.par --states 1,3 --csv -"},
        {"moments", "orvane moments examples/Er3plus-LaF3.par --initial 1 --range 1 4"},
        {"chi", "orvane chi examples/Er3plus-LaF3.par --temperatures \"2 300 2\" --curie 300"},
        {"intensities", "orvane intensities examples/Er3plus-LaF3.par --initial 1 --range 17 40 --index 1.6"},
        {"jo-fit", "orvane jo-fit examples/Er3plus-LaF3.par --measured lines.csv"},
        {"fit", "orvane fit examples/Pr3plus-LaF3.par --observed examples/Pr3plus-LaF3-levels.txt "
                "--free EAVG,F2,B20,B40 --ultimate"},
        {"symmetry", "orvane symmetry D3h"},
        {"de", "orvane de examples/Pr3plus-LaF3.par --observed examples/Pr3plus-LaF3-levels.txt --bounds bounds.txt"},
    };
    return table;
}

std::string pathOf(const CLI::App& command) {
    std::string path;
    for (const CLI::App* c = &command; c->get_parent() != nullptr; c = c->get_parent())
        path = c->get_name() + (path.empty() ? "" : " " + path);
    return path;
}

}  // namespace

std::optional<std::string> helpExample(const std::string& commandPath) {
    const auto found = examples().find(commandPath);
    if (found == examples().end()) return std::nullopt;
    return found->second;
}

void addHelpExamples(CLI::App& command) {
    for (CLI::App* sub : command.get_subcommands({})) {
        if (const auto example = helpExample(pathOf(*sub))) sub->footer("\nExample:\n  " + *example);
        addHelpExamples(*sub);
    }
}

}  // namespace orvane::cli
