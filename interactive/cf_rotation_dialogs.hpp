#pragma once
// The editor's rotation commands: the questions they ask, the rows they write
// back and the log-book lines they leave. Each keeps the rows it replaces so
// that recoverPreviousRows can put them back.
#include <optional>
#include <string>

#include "interactive/asker.hpp"
#include "core/log_book.hpp"
#include "params/cf_records.hpp"
#include "params/cf_rotation.hpp"

namespace orvane::params {

// The rows as they were before the last rotation.
struct RotationHistory {
    std::optional<CfTable> previous;
};

// Rotates by the given angles and logs "The coordinates frame for the CFP has been
// rotated by Euler's angles:" (or `headline`, when given) between rows of 47 '#'.
void rotateAndLog(CfTable& table, const EulerAngles& angles, RotationHistory& history,
                  LogBook& log, const std::string& headline = {});

// Parses three angles ("," and ";" count as blanks); std::nullopt otherwise.
std::optional<EulerAngles> parseEulerAngles(const std::string& answer);

// Asks for the angles and rotates. False when the user cancels (empty answer).
bool rotateByAskedAngles(CfTable& table, Asker& asker, LogBook& log, RotationHistory& history);

void rotateC3toC4(CfTable& table, LogBook& log, RotationHistory& history);
void rotateC4toC3(CfTable& table, LogBook& log, RotationHistory& history);

// Rotation about z that makes Im B(k,q) zero. The angle in degrees:
// 90/q when Re = 0, else atan(Im/Re)/q (atan, not atan2: within +-90/q).
double zeroImaginaryAngle(double re, double im, int q);

// Asks for k and q and rotates; messages for a missing row, q = 0 and a single
// number. Returns the angle used, or std::nullopt when nothing was rotated.
std::optional<double> rotateToZeroImaginaryAsking(CfTable& table, Asker& asker, LogBook& log,
                                                   RotationHistory& history);
// The same with k and q given; throws UserError with the texts of the messages.
double rotateToZeroImaginary(CfTable& table, int k, int q, LogBook& log, RotationHistory& history);

// Euler angles of the six equivalent garnet (or D2) sites; `toSiteOne` gives the
// inverse rotation from that site to site 1. Site 1 is (0, 0, 0).
std::optional<EulerAngles> garnetSiteAngles(int site, bool toSiteOne);
// Reads "3" or "4f" (an 'f' anywhere means the rotation from the site to site 1).
struct GarnetChoice {
    int site = 1;
    bool toSiteOne = false;
};
std::optional<GarnetChoice> parseGarnetChoice(const std::string& answer);
void rotateToGarnetSite(CfTable& table, const GarnetChoice& choice, LogBook& log,
                        RotationHistory& history);
bool rotateToGarnetSiteAsking(CfTable& table, Asker& asker, LogBook& log,
                              RotationHistory& history);

// Puts back the rows kept before the last rotation; false when there are none.
bool recoverPreviousRows(CfTable& table, RotationHistory& history);

// One log line per row: "  k  q  Re  Im".
std::string formatRowLine(const CfRow& row, bool complexMode);

}  // namespace orvane::params
