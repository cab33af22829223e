#pragma once
// The log book's backup and saved copies in Rich Text Format: lines of plain
// text written as a minimal RTF document (one paragraph per line; "\", "{"
// and "}" escaped; characters beyond ASCII as \uN?), and the text read back
// from such a file, or from any RTF whose text sits in plain runs (control
// words and groups other than the text are skipped).
#include <string>
#include <string_view>

namespace orvane::app {

std::string richTextOf(std::string_view plainText);
std::string plainTextOfRichText(std::string_view rtf);
bool looksLikeRichText(std::string_view content);

}  // namespace orvane::app
