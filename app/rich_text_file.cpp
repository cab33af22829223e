#include "app/rich_text_file.hpp"

#include <QList>
#include <QString>
#include <algorithm>
#include <cctype>
#include <charconv>

namespace orvane::app {

namespace {

void appendEscaped(std::string& out, char32_t c) {
    if (c == '\\' || c == '{' || c == '}') {
        out += '\\';
        out += static_cast<char>(c);
    } else if (c == '\t') {
        out += "\\tab ";
    } else if (c < 0x80) {
        out += static_cast<char>(c);
    } else {
        // RTF's \u takes a signed 16-bit number; characters beyond the BMP are written as their surrogates.
        const QString utf16 = QString::fromUcs4(&c, 1);
        for (QChar unit : utf16) out += "\\u" + std::to_string(static_cast<int16_t>(unit.unicode())) + "?";
    }
}

// Destinations whose content is not text (fonts, colours, document info, pictures).
bool isSkippedDestination(std::string_view word) {
    return word == "fonttbl" || word == "colortbl" || word == "stylesheet" || word == "info" || word == "pict" ||
           word == "*";
}

}  // namespace

std::string richTextOf(std::string_view plainText) {
    std::string out = "{\\rtf1\\ansi\\deff0{\\fonttbl{\\f0\\fmodern Courier New;}}\\f0\\fs20\n";
    const QString text = QString::fromUtf8(plainText.data(), static_cast<qsizetype>(plainText.size()));
    for (char32_t c : text.toUcs4()) {
        if (c == '\n')
            out += "\\par\n";
        else if (c != '\r')
            appendEscaped(out, c);
    }
    out += "}\n";
    return out;
}

std::string plainTextOfRichText(std::string_view rtf) {
    std::u16string text;
    int depth = 0;
    int skipDepth = 0;  // depth of the group being skipped, 0 for none
    int pendingFallback = 0;  // characters after \uN to drop
    for (std::size_t i = 0; i < rtf.size();) {
        const char c = rtf[i];
        if (c == '{') {
            ++depth;
            ++i;
            continue;
        }
        if (c == '}') {
            if (skipDepth == depth) skipDepth = 0;
            --depth;
            ++i;
            continue;
        }
        if (c == '\r' || c == '\n') {
            ++i;
            continue;
        }
        if (c != '\\') {
            if (!skipDepth && depth > 0) {
                if (pendingFallback > 0)
                    --pendingFallback;
                else
                    text += static_cast<char16_t>(static_cast<unsigned char>(c));
            }
            ++i;
            continue;
        }
        // A control symbol or word.
        ++i;
        if (i >= rtf.size()) break;
        const char next = rtf[i];
        if (next == '\\' || next == '{' || next == '}') {
            if (!skipDepth) text += static_cast<char16_t>(next);
            ++i;
            continue;
        }
        if (next == '*') {
            if (!skipDepth) skipDepth = depth;
            ++i;
            continue;
        }
        if (next == '\'') {  // \'hh: a byte in the document's code page, taken as Latin-1
            unsigned byte = 0;
            const char* first = rtf.data() + std::min(i + 1, rtf.size());
            const char* last = rtf.data() + std::min(i + 3, rtf.size());
            if (!skipDepth && std::from_chars(first, last, byte, 16).ptr == last) text += static_cast<char16_t>(byte);
            i += 3;
            continue;
        }
        std::size_t start = i;
        while (i < rtf.size() && std::isalpha(static_cast<unsigned char>(rtf[i]))) ++i;
        const std::string_view word = rtf.substr(start, i - start);
        start = i;
        if (i < rtf.size() && (rtf[i] == '-' || std::isdigit(static_cast<unsigned char>(rtf[i])))) ++i;
        while (i < rtf.size() && std::isdigit(static_cast<unsigned char>(rtf[i]))) ++i;
        const std::string number(rtf.substr(start, i - start));
        if (i < rtf.size() && rtf[i] == ' ') ++i;
        if (skipDepth) continue;
        if (isSkippedDestination(word)) {
            skipDepth = depth;
        } else if (word == "par" || word == "line") {
            text += u'\n';
        } else if (word == "tab") {
            text += u'\t';
        } else if (int code = 0; word == "u" &&
                   std::from_chars(number.data(), number.data() + number.size(), code).ptr == number.data() + number.size() &&
                   !number.empty() && code >= -32768 && code <= 65535) {
            text += static_cast<char16_t>(static_cast<uint16_t>(code));
            pendingFallback = 1;
        }
    }
    return QString::fromUtf16(text.data(), static_cast<qsizetype>(text.size())).toStdString();
}

bool looksLikeRichText(std::string_view content) { return content.substr(0, 5) == "{\\rtf"; }

}  // namespace orvane::app
