#pragma once
// Table files read with a question when the file is missing: the user names
// another file until one exists; an empty or cancelled answer ends with the
// reader's "not found" error for the file first asked for.
#include <filesystem>
#include <vector>

#include "interactive/asker.hpp"
#include "core/log_book.hpp"
#include "tables/fractional_parentage.hpp"
#include "tables/state_labels.hpp"

namespace orvane {

// Coefficients of fractional parentage of f^n; asks "GIVE FILE NAME FOR CFP from ".
ParentageTable ReadFractionalParentage(int n, const std::filesystem::path& file, Asker& asker);

// State labels; asks "get State labels from file " (dialog "Input Dialog Box"),
// shows each label warning in a message box titled "Warning", logs
// "ZERO State LABELS!!!" for a file without term lines.
std::vector<TermRecord> ReadStateLabels(const std::filesystem::path& file, StateLabelForm form,
                                        LogBook& log, Asker& asker, bool skipTitle = true);

}  // namespace orvane
