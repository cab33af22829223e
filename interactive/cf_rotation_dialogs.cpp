#include "interactive/cf_rotation_dialogs.hpp"

#include <cmath>
#include <cstdlib>

#include "core/number_format.hpp"
#include "core/text.hpp"
#include "core/user_error.hpp"
#include "params/value_cell.hpp"

namespace orvane::params {

namespace {

const std::string kRotationRule(47, '#');

std::string angleText(double degrees) {
    return std::string(trim(formatNumber(degrees, "###0.0####")));
}

std::string anglesText(const EulerAngles& a) {
    return angleText(a.alpha) + " " + angleText(a.beta) + " " + angleText(a.gamma);
}

std::string kqText(int k, int q) { return std::to_string(k) + std::to_string(q); }

}  // namespace

std::string formatRowLine(const CfRow& row, bool complexMode) {
    std::string line = "  " + std::to_string(row.k) + "  " + std::to_string(row.q) + "  " +
                       row.re.text;
    if (complexMode) line += "  " + row.im.text;
    return line;
}

void rotateAndLog(CfTable& table, const EulerAngles& angles, RotationHistory& history,
                  LogBook& log, const std::string& headline) {
    history.previous = table;
    table = rotateTable(table, angles);
    log.appendLine(kRotationRule);
    if (headline.empty()) {
        log.appendLine("The coordinates frame for the CFP has been rotated by Euler's angles:");
        log.appendLine(anglesText(angles));
    } else {
        log.appendLine(headline + anglesText(angles));
    }
    for (const CfRow& row : table.rows) log.appendLine(formatRowLine(row, table.complexMode));
    log.appendLine(kRotationRule);
}

std::optional<EulerAngles> parseEulerAngles(const std::string& answer) {
    const auto fields = splitAnswerFields(answer);
    if (fields.size() != 3) return std::nullopt;
    const auto a = parseNumber(fields[0]);
    const auto b = parseNumber(fields[1]);
    const auto g = parseNumber(fields[2]);
    if (!a || !b || !g) return std::nullopt;
    return EulerAngles{*a, *b, *g};
}

bool rotateByAskedAngles(CfTable& table, Asker& asker, LogBook& log, RotationHistory& history) {
    const Question question{
        "Give Euler's angles of rotation (Alpha, Beta and Gamma) in degree (separated by a "
        "space or a comma ):",
        "Rotation of Crystal Field Parameters", ""};
    while (true) {
        const auto answer = asker.askLine(question);
        if (!answer || trim(*answer).empty()) return false;
        if (const auto angles = parseEulerAngles(*answer)) {
            rotateAndLog(table, *angles, history, log);
            return true;
        }
        asker.showMessage("Rotation of Crystal Field Parameters", "Invalid input: " + *answer);
    }
}

void rotateC3toC4(CfTable& table, LogBook& log, RotationHistory& history) {
    rotateAndLog(table, c3ToC4Angles(), history, log,
                 "The coordinates frame for the CFP has been rotated from [111] to [001] axis "
                 "with  Euler's angles: ");
}

void rotateC4toC3(CfTable& table, LogBook& log, RotationHistory& history) {
    rotateAndLog(table, c4ToC3Angles(), history, log,
                 "The coordinates frame for the CFP has been rotated from [001] to [111] axis "
                 "with  Euler's angles: ");
}

// (alpha, 0, 0) multiplies B(k,q) by exp(-i q alpha); alpha = arg(B)/q up to the branch
// of atan, which leaves a real (possibly negative) B'(k,q).
double zeroImaginaryAngle(double re, double im, int q) {
    if (re == 0.0) return 90.0 / q;
    return (45.0 * std::atan(im / re) / std::atan(1.0)) / q;
}

double rotateToZeroImaginary(CfTable& table, int k, int q, LogBook& log,
                             RotationHistory& history) {
    const std::string title = "Rotation to set ImBkq=0";
    const CfRow* found = nullptr;
    for (const CfRow& row : table.rows)
        if (row.k == k && row.q == q) found = &row;
    if (!found)
        throw UserError(title, "There is no ImB" + kqText(k, q) + " found to set it zero!");
    const double re = cellNumber(found->re);
    const double im = table.complexMode ? cellNumber(found->im) : 0.0;
    if (q == 0 || im == 0.0)
        throw UserError(title, "No need or impossible to rotate Im B" + kqText(k, q) +
                                   " to zero as it should be zero in itself!");
    const double alpha = zeroImaginaryAngle(re, im, q);
    history.previous = table;
    table = rotateTable(table, EulerAngles{alpha, 0.0, 0.0});
    log.appendLine(kRotationRule);
    log.appendLine("The coordinates frame for the CFP has been rotated by " +
                   formatNumber(alpha, "###0.0####") + " deg. to set ImB" + kqText(k, q) + " = 0");
    for (const CfRow& row : table.rows) log.appendLine(formatRowLine(row, table.complexMode));
    log.appendLine(kRotationRule);
    return alpha;
}

std::optional<double> rotateToZeroImaginaryAsking(CfTable& table, Asker& asker, LogBook& log,
                                                   RotationHistory& history) {
    const std::string title = "Rotation to set ImBkq=0";
    const Question question{
        "Give values of k and q to set ImBkq=0 by rotation around the z-axis:", title, ""};
    const auto answer = asker.askLine(question);
    if (!answer || trim(*answer).empty()) return std::nullopt;
    const auto fields = splitAnswerFields(*answer);
    if (fields.size() < 2) {
        asker.showMessage(title, "Need to provide both k and q value to rotate Im Bkq=0. Your "
                                 "input is just:" + *answer);
        return std::nullopt;
    }
    const auto k = parseInteger(fields[0]);
    const auto q = parseInteger(fields[1]);
    if (!k || !q) {
        asker.showMessage(title, "Invalid input: " + *answer);
        return std::nullopt;
    }
    try {
        return rotateToZeroImaginary(table, *k, *q, log, history);
    } catch (const UserError& error) {
        asker.showMessage(error.title(), error.what());
        return std::nullopt;
    }
}

std::optional<EulerAngles> garnetSiteAngles(int site, bool toSiteOne) {
    switch (site) {
        case 1: return EulerAngles{0, 0, 0};
        case 2: return toSiteOne ? EulerAngles{0, 0, -90} : EulerAngles{90, 0, 0};
        case 3: return toSiteOne ? EulerAngles{0, -90, 0} : EulerAngles{0, 90, 0};
        case 4: return toSiteOne ? EulerAngles{-90, -90, 0} : EulerAngles{0, 90, 90};
        case 5: return toSiteOne ? EulerAngles{0, -90, -90} : EulerAngles{90, 90, 0};
        case 6: return toSiteOne ? EulerAngles{-90, -90, -90} : EulerAngles{90, 90, 90};
        default: return std::nullopt;
    }
}

std::optional<GarnetChoice> parseGarnetChoice(const std::string& answer) {
    GarnetChoice choice;
    choice.toSiteOne = icontains(answer, "f");
    std::string digits;
    for (char c : answer)
        if (c >= '0' && c <= '9') digits += c;
    const auto site = parseInteger(digits);
    if (!site || !garnetSiteAngles(*site, false)) return std::nullopt;
    choice.site = *site;
    return choice;
}

void rotateToGarnetSite(CfTable& table, const GarnetChoice& choice, LogBook& log,
                        RotationHistory& history) {
    const auto angles = garnetSiteAngles(choice.site, choice.toSiteOne);
    if (!angles)
        throw UserError("Rotation of Crystal Field Parameters for Equivalent Sites in Garnets",
                        "Invalid site: " + std::to_string(choice.site));
    const std::string headline =
        choice.toSiteOne ? "The coordinates frame for the CFP has been rotated from site #" +
                               std::to_string(choice.site) + " to site #1 by Euler's angles: "
                         : "The coordinates frame for the CFP has been rotated to site #" +
                               std::to_string(choice.site) + " by Euler's angles: ";
    rotateAndLog(table, *angles, history, log, headline);
}

bool rotateToGarnetSiteAsking(CfTable& table, Asker& asker, LogBook& log,
                              RotationHistory& history) {
    const std::string title = "Rotation of Crystal Field Parameters for Equivalent Sites in Garnets";
    const std::string prompt =
        "For garnets or D2 sites, there are six equivalents which can be transformed with the "
        "following Euler's angles of rotation (Alpha, Beta and Gamma) :\n"
        "Site #1: (0 0 0) No rotation\nSite #2: (90 0 0)\nSite #3: (0 90 0)\n"
        "Site #4: (0 90 90)\nSite #5: (90 90 0)\nSite #6: (90 90 90)\n"
        "Give your choice of site (assumed for rotation to that site ; or add 'f' to indicate a "
        "rotation from the specific site to site 1.";
    while (true) {
        const auto answer = asker.askLine(Question{prompt, title, ""});
        if (!answer || trim(*answer).empty()) return false;
        if (const auto choice = parseGarnetChoice(*answer)) {
            rotateToGarnetSite(table, *choice, log, history);
            asker.showMessage(title,
                              "The transformed Crystal Field Parameters are now shown in the "
                              "Logbook.");
            return true;
        }
        asker.showMessage(title, "Invalid input: " + *answer);
    }
}

bool recoverPreviousRows(CfTable& table, RotationHistory& history) {
    if (!history.previous) return false;
    table = *history.previous;
    history.previous.reset();
    return true;
}

}  // namespace orvane::params
