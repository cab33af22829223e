#include "interactive/published_comparison_dialogs.hpp"

#include <filesystem>

#include "core/text.hpp"
#include "interactive/interactive_generators.hpp"

namespace orvane {

std::string publishedCheckPrompt(PublishedCheck check) {
    switch (check) {
        case PublishedCheck::UnitTensorsAndSpinOrbit:
            return "GIVE FILE NAME FOR getting Torvelde's ME of U(k) and spin-orbit operators from";
        case PublishedCheck::Electrostatic:
            return "GIVE FILE NAME FOR getting Torvelde's ME of 2-particle electrostatic interaction operators from";
        case PublishedCheck::ThreeBody: return "GIVE FILE NAME FOR getting Torvelde's ME of ti (ordinary) operators from";
        case PublishedCheck::MkPk: break;
    }
    return "GIVE FILE NAME FOR getting Torvelde's ME of mk and pk operators from";
}

std::optional<bool> comparePublishedAsking(PublishedCheck check, Asker& asker, LogBook& log) {
    const auto n = askElectronCount(asker, log);
    if (!n) return std::nullopt;
    const std::string defaultName = "f" + std::to_string(*n) + "cross";
    const auto answer = asker.askLine({publishedCheckPrompt(check), "Input Dialog Box", defaultName});
    if (!answer || trim(*answer).empty()) return std::nullopt;
    const std::filesystem::path file(std::string(trim(*answer)));
    const auto folder = file.has_parent_path() ? file.parent_path() : std::filesystem::path(".");
    const bool manyBody = check == PublishedCheck::ThreeBody || check == PublishedCheck::MkPk;
    const auto results = comparePublishedChain(
        *n, [&](int m) { return m == *n ? file : publishedFileIn(folder, m); }, manyBody);
    const auto& last = results.back();
    for (const auto& line : publishedCheckLines(last, check, true)) log.appendLine(line);
    return publishedCheckAgrees(last, check);
}

}  // namespace orvane
