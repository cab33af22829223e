#include "interactive/superposition_dialogs.hpp"

#include "core/text.hpp"
#include "interactive/cf_rotation_dialogs.hpp"

namespace orvane::params {

std::optional<std::vector<Ligand>> convertLatticeTableAsking(
    const std::vector<std::array<double, 3>>& fractional, double a, double b, double c,
    Asker& asker) {
    const std::string title = "Convert the present lattice coordinates of ligand to polar coordinates";
    const Question question{"Give lattice constants - angles: alpha, beta and gamma in degrees",
                            title, "90 90 90"};
    while (true) {
        const auto answer = asker.askLine(question);
        if (!answer) return std::nullopt;
        const auto angles = parseEulerAngles(*answer);  // three numbers, "," and ";" as blanks
        std::optional<std::vector<Ligand>> converted;
        if (angles) {
            const LatticeCell cell{a, b, c, angles->alpha, angles->beta, angles->gamma};
            converted.emplace();
            for (const auto& row : fractional) {
                const auto ligand = latticeToPolar(row, cell);
                if (!ligand) {
                    converted.reset();
                    break;
                }
                converted->push_back(*ligand);
            }
        }
        if (converted) return converted;
        asker.showMessage(title, "Invalid input:" + *answer);
    }
}

std::optional<std::vector<Ligand>> rotateLigandsAsking(const std::vector<Ligand>& ligands,
                                                       Asker& asker) {
    const std::string title = "Rotation of ligand positions";
    asker.showMessage(title,
                      "The rotation of ionic positions is the inverse of the rotation of "
                      "coordinate frames.");
    const Question question{
        "Give Euler's angles of rotation (Alpha, Beta and Gamma) in degree (separated by a "
        "space or a comma ):",
        title, ""};
    while (true) {
        const auto answer = asker.askLine(question);
        if (!answer || trim(*answer).empty()) return std::nullopt;
        if (const auto e = parseEulerAngles(*answer))
            return rotateLigands(ligands, e->alpha, e->beta, e->gamma);
        asker.showMessage(title, "Invalid input: " + *answer);
    }
}

std::optional<SuperpositionParameters> confirmReferenceDistance(SuperpositionParameters parameters, Asker& asker) {
    const std::string title = "Error in setting up ligand positions";
    const Question question{"Give the reference ligand distance R0:", "Reference distance R0", ""};
    while (parameters.r0 == 0.0) {
        switch (asker.askChoice(title, "Reference ligand distance = 0!", Buttons::AbortRetryIgnore)) {
            case Choice::Ignore:
                parameters.zeroR0Ignored = true;
                return parameters;
            case Choice::Retry:
                break;
            default:
                return std::nullopt;
        }
        for (;;) {
            const auto answer = asker.askLine(question);
            if (!answer) return std::nullopt;
            if (const auto r0 = parseNumber(trim(*answer)); r0 && *r0 >= 0.0) {
                parameters.r0 = *r0;
                break;
            }
            asker.showMessage(question.title, "Invalid input: " + *answer);
        }
    }
    return parameters;
}

}  // namespace orvane::params
