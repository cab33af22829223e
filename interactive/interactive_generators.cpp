#include "interactive/interactive_generators.hpp"

#include <optional>
#include <stdexcept>
#include <string>

#include <fmt/format.h>

#include "core/atomic_file.hpp"
#include "core/number_format.hpp"
#include "core/text.hpp"
#include "core/user_error.hpp"
#include "interactive/table_file_prompts.hpp"
#include "tables/table_seal.hpp"
#include "tables/fractional_parentage.hpp"
#include "tables/lccf_table.hpp"
#include "tables/reduced_tables.hpp"
#include "tables/state_labels.hpp"
#include "tables/table_builder.hpp"
#include "tables/table_directory.hpp"

namespace orvane {

namespace {

constexpr int kShellCapacity = 14;

std::optional<std::string> ask(Asker& asker, const std::string& prompt, const std::string& defaultAnswer = "") {
    return asker.askLine({prompt, "Input Dialog Box", defaultAnswer});
}

std::optional<int> askElectrons(Asker& asker, LogBook& log, const std::string& prompt = "give no. of electron >") {
    while (true) {
        const auto answer = ask(asker, prompt);
        if (!answer) return std::nullopt;
        const auto fields = splitAnswerFields(*answer);
        const auto n = fields.empty() ? std::nullopt : parseInteger(fields[0]);
        if (n && *n >= 1 && *n <= kShellCapacity) return *n;
        log.appendLine("Wrong no. of e- !!!");
    }
}

std::optional<int> askChoice(Asker& asker, const std::string& prompt) {
    while (true) {
        const auto answer = ask(asker, prompt);
        if (!answer) return std::nullopt;
        const auto fields = splitAnswerFields(*answer);
        const auto choice = fields.empty() ? std::nullopt : parseInteger(fields[0]);
        if (choice && *choice >= 1 && *choice <= 3) return *choice;
    }
}

std::vector<TermRecord> termsOf(int n, const std::filesystem::path& directory, Asker& asker, LogBook& log) {
    if (n == 0) return {{"1S", 0, 0, 0}};
    const std::string name = configurationFileName(n, "state.lab");
    const auto found = findCaseBlind(directory, name);
    return ReadStateLabels(found ? *found : directory / name, StateLabelForm::Standard, log, asker);
}

std::filesystem::path inDirectory(const std::filesystem::path& directory, const std::string& answer) {
    const std::filesystem::path path(answer);
    if (path.is_absolute()) return path;
    const auto found = findCaseBlind(directory, answer);
    return found ? *found : directory / path;
}

// One complementary build of f^N; false when the user cancelled.
bool buildComplementary(int N, Asker& asker, LogBook& log, const std::filesystem::path& directory) {
    const int nPrime = 15 - N;
    log.appendLine(" Build Coeffs. of Fractional Parentage for N= " + std::to_string(N));
    log.appendLine(">half-filled shell as based on those of N<=half-filled shell configuration f" +
                   std::to_string(nPrime));
    const auto termsN = termsOf(14 - N, directory, asker, log);
    const auto parentsN = termsOf(nPrime, directory, asker, log);
    const auto input = ask(asker, "Input CFP from file ", configurationFileName(nPrime, "cfp.val"));
    if (!input) return false;
    const auto inputPath = inDirectory(directory, std::string(trim(*input)));
    const auto source = parseFractionalParentage(readTextFile(inputPath), inputPath.string());
    const auto output = ask(asker, "Store CFP into file ", "CFP.VAL");
    if (!output) return false;
    Eigen::MatrixXd values;
    try {
        values = complementaryParentage(N, source, parentsN, termsN, termsN, parentsN);
    } catch (const std::invalid_argument& error) {
        throw UserError("Error in building CFP", std::string(error.what()) + " (" + inputPath.string() + ")");
    }
    const auto outputPath = inDirectory(directory, std::string(trim(*output)));
    writeFileAtomically(outputPath, fractionalParentageFileText(source.title, values));
    log.appendLine("Stored in " + outputPath.string());
    return true;
}

}  // namespace

void runComplementaryParentageGenerator(Asker& asker, LogBook& log, const std::filesystem::path& directory) {
    bool askLetter = true;
    while (true) {
        if (askLetter) {
            const auto letter = ask(asker, "Select orbital quantum notation (s,p,d,f,g,h ...)>", "f");
            if (!letter) return;
            if (!iequals(trim(*letter), "f")) {
                log.appendLine("Only the f shell (l = 3) is handled");
                continue;
            }
        }
        const auto N = askElectrons(asker, log);
        if (!N) return;
        if (*N <= 7) {
            log.appendLine("Coeffs. of Fractional Parentage for less than half-filled shell already exist  !!!");
        } else if (!buildComplementary(*N, asker, log, directory)) {
            return;
        }
        const auto choice = askChoice(asker, "Choose 1) another configuration, 2) Another no. of electron, 3)stop >");
        if (!choice || *choice == 3) return;
        askLetter = (*choice == 1);
    }
}

namespace {

// The operator menu: 1 U(k), 2 V(1k), 3 UK(LCCF), 4 f(k).
constexpr const char* kOperatorPrompt = "Give operator no. 1) U(k), 2) V(1k), 3) UK(LCCF), 4) f(k) >";

// The ranks the engine uses: U(k), UK(LCCF) and f(k) for k = 2, 4, 6; V(1k) also k = 1.
bool rankIsValid(int op, int k) {
    const bool even = (k == 2 || k == 4 || k == 6);
    return op == 2 ? (even || k == 1) : even;
}

}  // namespace

void runReducedMatrixGenerator(Asker& asker, LogBook& log, const std::filesystem::path& directory) {
    log.appendLine("**********************************************************************");
    log.appendLine(" Evaluation of Reduced Matrix U(k),  V(1k) and UK(LCCF) elements in LS term basis");
    log.appendLine(" and Coulomb Reduced Matrix f(k) elements in LS term basis from U(k)");
    log.appendLine(" from Coeffs. of Fractional Parentage");
    bool askConfiguration = true;
    int n = 0;
    std::vector<TermRecord> terms, parents;
    ParentageTable cfp;
    while (true) {
        if (askConfiguration) {
            const auto letter = ask(asker, "Select orbital quantum notation (s,p,d,f,g,h ...)>", "f");
            if (!letter) return;
            if (!iequals(trim(*letter), "f")) {
                log.appendLine("Only the f shell (l = 3) is handled");
                continue;
            }
            const auto electrons = askElectrons(asker, log);
            if (!electrons) return;
            n = *electrons;
            terms = termsOf(n, directory, asker, log);
            parents = termsOf(n - 1, directory, asker, log);
            const std::string cfpName = configurationFileName(n, "cfp.val");
            const auto cfpFile = findCaseBlind(directory, cfpName);
            cfp = ReadFractionalParentage(n, cfpFile ? *cfpFile : directory / cfpName, asker);
            log.appendLine("No. of electron = " + generalNumber(n));
            log.appendLine("No. of states = " + generalNumber(static_cast<double>(terms.size())));
        }
        int op = 0;
        while (true) {
            const auto answer = ask(asker, kOperatorPrompt);
            if (!answer) return;
            const auto fields = splitAnswerFields(*answer);
            const auto value = fields.empty() ? std::nullopt : parseInteger(fields[0]);
            if (value && *value >= 1 && *value <= 4) {
                op = *value;
                break;
            }
            log.appendLine("INvalid operator no. !!!");
        }
        int k = 0;
        while (true) {
            const auto answer =
                ask(asker, op == 3 ? "Give the Rank K of UK(LCCF) Operator >" : "Give the Rank k of Operator >");
            if (!answer) return;
            const auto fields = splitAnswerFields(*answer);
            const auto value = fields.empty() ? std::nullopt : parseInteger(fields[0]);
            if (value && rankIsValid(op, *value)) {
                k = *value;
                break;
            }
            log.appendLine("invalid Rank k  !!!");
        }
        log.appendLine("Calculation started at " + formatTime(localNow()));
        const auto termSL = spinOrbitOf(terms);
        const auto parentSL = spinOrbitOf(parents);
        Eigen::MatrixXd values = Eigen::MatrixXd::Zero(static_cast<int>(terms.size()), static_cast<int>(parents.size()));
        values.topLeftCorner(std::min<int>(static_cast<int>(cfp.values.rows()), static_cast<int>(values.rows())),
                             std::min<int>(static_cast<int>(cfp.values.cols()), static_cast<int>(values.cols()))) =
            cfp.values.topLeftCorner(std::min<int>(static_cast<int>(cfp.values.rows()), static_cast<int>(values.rows())),
                                     std::min<int>(static_cast<int>(cfp.values.cols()), static_cast<int>(values.cols())));
        Eigen::MatrixXd table;
        TableOperator kind = TableOperator::U;
        if (op == 1 || op == 2) {
            log.appendLine("Build Uk or V1k RME");
            kind = (op == 1) ? TableOperator::U : TableOperator::V1;
            table = (op == 1) ? unitTensorMatrix(n, k, termSL, parentSL, values)
                              : doubleTensorMatrix(n, k, termSL, parentSL, values);
        } else if (op == 3) {
            log.appendLine(fmt::format("Build UK(LCCF) RME of rank {}", k));
            kind = TableOperator::Lccf;
            table = lccfMatrixFromParentage(n, k, termSL, parentSL, values);
        } else {
            kind = TableOperator::F;
            std::array<Eigen::MatrixXd, 3> coulomb;
            for (int r = 0; r < 3; ++r) {
                log.appendLine(fmt::format("Construct the Coulomb reduced matrix f({})", 2 * r + 2));
                coulomb[static_cast<std::size_t>(r)] =
                    coulombMatrix(n, 2 * r + 2, termSL, unitTensorMatrix(n, 2 * r + 2, termSL, parentSL, values));
            }
            for (const auto& line : electrostaticTraceLines(electrostaticTraces(n, termSL, coulomb[0], coulomb[1], coulomb[2])))
                log.appendLine(line);
            table = coulomb[static_cast<std::size_t>(k / 2 - 1)];
        }
        const auto file = ask(asker, "Store up the Reduced matrix element to file ",
                              configurationFileName(n, tableFileName(kind, k)));
        if (!file) return;
        log.appendLine(" (only for the lower triangle of the matrix).");
        const auto path = inDirectory(directory, std::string(trim(*file)));
        writeGeneratedTable(path, reducedTableFileText(reducedTableTitle(operatorName(kind, k), n), table));
        log.appendLine("Stored in " + path.string());
        const auto choice = askChoice(asker, "Choose 1) another configuration, 2) another rank, 3)stop >");
        if (!choice || *choice == 3) return;
        askConfiguration = (*choice == 1);
    }
}

std::optional<int> askElectronCount(Asker& asker, LogBook& log) { return askElectrons(asker, log); }

std::optional<int> askElectronCountWith(Asker& asker, LogBook& log, const std::string& prompt) {
    return askElectrons(asker, log, prompt);
}

}  // namespace orvane
