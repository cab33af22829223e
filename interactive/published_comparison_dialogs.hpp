#pragma once
// The interactive checks of the generated tables against a published table
// file ("fNcross" layout): the user gives the number of electrons and the file;
// the files of the lower configurations, needed to fix the term phases, are the
// "fMcross" files beside it. Prompts:
//   "GIVE FILE NAME FOR getting Torvelde's ME of U(k) and spin-orbit operators from"
//   "GIVE FILE NAME FOR getting Torvelde's ME of 2-particle electrostatic interaction operators from"
//   "GIVE FILE NAME FOR getting Torvelde's ME of ti (ordinary) operators from"
//   "GIVE FILE NAME FOR getting Torvelde's ME of mk and pk operators from"
// Each check logs its element lines and ends with its verdict or closing line
// (published_comparison.hpp).
#include <optional>
#include <string>

#include "interactive/asker.hpp"
#include "core/log_book.hpp"
#include "tables/published_comparison.hpp"

namespace orvane {

std::string publishedCheckPrompt(PublishedCheck check);

// std::nullopt when a question is cancelled; otherwise whether no mismatch was
// found. Throws UserError for a missing or malformed file.
std::optional<bool> comparePublishedAsking(PublishedCheck check, Asker& asker, LogBook& log);

}  // namespace orvane
