#pragma once
// The interactive table generators: one-line prompts through the Asker seam,
// progress and results in the log book, files in the table directory.
//  * runComplementaryParentageGenerator: coefficients of fractional parentage
//    of f^N, N = 8..14, from those of f^(15-N) (the "CFP.VAL" generator);
//  * runReducedMatrixGenerator: U(k), V(1k) and f(k) tables of f^n from the
//    state labels and coefficients in the table directory.
// Both end when the user cancels or answers 3 to the final choice.
#include <filesystem>
#include <optional>
#include <string>

#include "interactive/asker.hpp"
#include "core/log_book.hpp"

namespace orvane {

void runComplementaryParentageGenerator(Asker& asker, LogBook& log, const std::filesystem::path& tableDirectory);
void runReducedMatrixGenerator(Asker& asker, LogBook& log, const std::filesystem::path& tableDirectory);

// Asks "give no. of electron >" until a number 1..14 is given (logging
// "Wrong no. of e- !!!" otherwise); std::nullopt when the user cancels.
std::optional<int> askElectronCount(Asker& asker, LogBook& log);
// The same question with another prompt.
std::optional<int> askElectronCountWith(Asker& asker, LogBook& log, const std::string& prompt);

}  // namespace orvane
