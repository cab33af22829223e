// Reading a sheet of an .xlsx workbook (ECMA-376 Part 1, sections 12.3 and
// 18.3): the zip container through minizip's unzip API over the bytes in
// memory, the XML parts through pugixml. Element and attribute names are
// matched by their local name, so that any namespace prefix is accepted.
#include <cstring>
#include <memory>

#include <fmt/format.h>
#include <minizip/unzip.h>
#include <pugixml.hpp>

#include "core/text.hpp"
#include "spreadsheet/xlsx_format.hpp"

namespace orvane {
namespace {

constexpr const char* kTitle = "File error";
// The largest XML part read (a sheet of this package's tables is far smaller).
constexpr uLong kMaxPartBytes = 64u * 1024u * 1024u;

// ---- the zip container over a memory buffer ----
struct MemoryStream {
    std::string_view bytes;
    ZPOS64_T position = 0;
};

voidpf openMemory(voidpf opaque, const void*, int) {
    static_cast<MemoryStream*>(opaque)->position = 0;
    return opaque;
}
uLong readMemory(voidpf, voidpf stream, void* buffer, uLong size) {
    auto* memory = static_cast<MemoryStream*>(stream);
    const ZPOS64_T left = memory->bytes.size() - std::min<ZPOS64_T>(memory->position, memory->bytes.size());
    const uLong count = static_cast<uLong>(std::min<ZPOS64_T>(size, left));
    if (count > 0) std::memcpy(buffer, memory->bytes.data() + memory->position, count);
    memory->position += count;
    return count;
}
uLong writeMemory(voidpf, voidpf, const void*, uLong) { return 0; }
ZPOS64_T tellMemory(voidpf, voidpf stream) { return static_cast<MemoryStream*>(stream)->position; }
long seekMemory(voidpf, voidpf stream, ZPOS64_T offset, int origin) {
    auto* memory = static_cast<MemoryStream*>(stream);
    const ZPOS64_T size = memory->bytes.size();
    ZPOS64_T base = origin == ZLIB_FILEFUNC_SEEK_SET ? 0 : origin == ZLIB_FILEFUNC_SEEK_CUR ? memory->position : size;
    if (offset > size || base + offset > size) return -1;
    memory->position = base + offset;
    return 0;
}
int closeMemory(voidpf, voidpf) { return 0; }
int errorMemory(voidpf, voidpf) { return 0; }

// Where the parts come from: the zip container, or (tests, fuzzing) a map.
class PartSource {
public:
    explicit PartSource(std::string fileName) : fileName_(std::move(fileName)) {}
    virtual ~PartSource() = default;
    // The part's bytes, std::nullopt when the workbook has no such part.
    virtual std::optional<std::string> part(const std::string& name) = 0;
    std::string requiredPart(const std::string& name) {
        auto content = part(name);
        if (!content) fail(name, "is missing");
        return *content;
    }
    [[noreturn]] void fail(const std::string& name, const std::string& problem) const {
        throw SpreadsheetError(kTitle, fileName_ + ": the workbook's part " + name + " " + problem);
    }
    const std::string& fileName() const { return fileName_; }

private:
    std::string fileName_;
};

class MapParts : public PartSource {
public:
    MapParts(const XlsxParts& parts, const std::string& fileName) : PartSource(fileName), parts_(parts) {}
    std::optional<std::string> part(const std::string& name) override {
        const auto found = parts_.find(name);
        return found == parts_.end() ? std::nullopt : std::optional(found->second);
    }

private:
    const XlsxParts& parts_;
};

class ZipArchive : public PartSource {
public:
    ZipArchive(std::string_view bytes, const std::string& fileName) : PartSource(fileName), memory_{bytes} {
        zlib_filefunc64_def functions{openMemory, readMemory, writeMemory, tellMemory,
                                      seekMemory, closeMemory, errorMemory, &memory_};
        zip_ = unzOpen2_64("memory", &functions);
        if (!zip_) throw SpreadsheetError(kTitle, fileName + ": not an .xlsx workbook (not a zip archive)");
    }
    ~ZipArchive() { unzClose(zip_); }
    ZipArchive(const ZipArchive&) = delete;
    ZipArchive& operator=(const ZipArchive&) = delete;

    std::optional<std::string> part(const std::string& name) override {
        if (unzLocateFile(zip_, name.c_str(), 1) != UNZ_OK) return std::nullopt;
        unz_file_info64 info{};
        if (unzGetCurrentFileInfo64(zip_, &info, nullptr, 0, nullptr, 0, nullptr, 0) != UNZ_OK ||
            info.uncompressed_size > kMaxPartBytes || unzOpenCurrentFile(zip_) != UNZ_OK)
            fail(name, "cannot be unpacked");
        std::string content(static_cast<std::size_t>(info.uncompressed_size), '\0');
        const int read = content.empty() ? 0 : unzReadCurrentFile(zip_, content.data(), static_cast<unsigned>(content.size()));
        char extra = 0;
        const bool more = unzReadCurrentFile(zip_, &extra, 1) != 0;
        const bool intact = unzCloseCurrentFile(zip_) == UNZ_OK;  // checks the CRC of what was read
        if (read != static_cast<int>(content.size()) || more || !intact) fail(name, "is damaged");
        return content;
    }

private:
    MemoryStream memory_;
    unzFile zip_ = nullptr;
};

// ---- XML by local names ----
std::string_view localName(const char* name) {
    const std::string_view text(name);
    const auto colon = text.rfind(':');
    return colon == std::string_view::npos ? text : text.substr(colon + 1);
}

pugi::xml_node child(pugi::xml_node node, std::string_view name) {
    for (pugi::xml_node c = node.first_child(); c; c = c.next_sibling())
        if (c.type() == pugi::node_element && localName(c.name()) == name) return c;
    return {};
}

template <class Visit>
void forChildren(pugi::xml_node node, std::string_view name, Visit visit) {
    for (pugi::xml_node c = node.first_child(); c; c = c.next_sibling())
        if (c.type() == pugi::node_element && localName(c.name()) == name) visit(c);
}

// An attribute by local name ("r:id" matches "id" only when `prefixed`).
std::string_view attribute(pugi::xml_node node, std::string_view name, bool prefixed = false) {
    for (pugi::xml_attribute a = node.first_attribute(); a; a = a.next_attribute()) {
        const std::string_view full(a.name());
        if (localName(a.name()) == name && (full.size() != name.size()) == prefixed) return a.value();
    }
    return {};
}

pugi::xml_document parseXml(PartSource& zip, const std::string& name, const std::string& content) {
    pugi::xml_document document;
    // A text of blanks alone (<t xml:space="preserve"> </t>) is kept.
    const auto result = document.load_buffer(content.data(), content.size(), pugi::parse_default | pugi::parse_ws_pcdata_single);
    if (!result) zip.fail(name, fmt::format("is not well-formed XML ({} at byte {})", result.description(), result.offset));
    return document;
}

// ---- workbook, relationships, shared strings ----
struct SheetEntry {
    std::string name;
    std::string relation;
};

std::vector<SheetEntry> sheetsOf(const pugi::xml_document& workbook) {
    std::vector<SheetEntry> sheets;
    forChildren(child(child(workbook, "workbook"), "sheets"), "sheet", [&](pugi::xml_node sheet) {
        sheets.push_back({std::string(attribute(sheet, "name")), std::string(attribute(sheet, "id", true))});
    });
    return sheets;
}

// The part a relationship of xl/workbook.xml points to: targets are relative
// to xl/ unless they start with "/".
std::optional<std::string> relationTarget(const pugi::xml_document& relations, std::string_view id) {
    std::optional<std::string> target;
    forChildren(child(relations, "Relationships"), "Relationship", [&](pugi::xml_node relation) {
        if (!target && attribute(relation, "Id") == id) {
            const std::string_view path = attribute(relation, "Target");
            target = !path.empty() && path.front() == '/' ? std::string(path.substr(1)) : "xl/" + std::string(path);
        }
    });
    return target;
}

// The text of an <si> or <is> string: its <t>, or its rich-text runs <r><t>
// joined (phonetic runs <rPh> are not part of the text).
std::string stringItem(pugi::xml_node item) {
    std::string text = child(item, "t").text().get();
    forChildren(item, "r", [&](pugi::xml_node run) { text += child(run, "t").text().get(); });
    return text;
}

std::vector<std::string> sharedStrings(PartSource& zip) {
    std::vector<std::string> strings;
    const std::string name = "xl/sharedStrings.xml";
    const auto content = zip.part(name);
    if (!content) return strings;
    const auto document = parseXml(zip, name, *content);
    forChildren(child(document, "sst"), "si", [&](pugi::xml_node item) { strings.push_back(stringItem(item)); });
    return strings;
}

// ---- the sheet's cells ----
struct CellReader {
    Spreadsheet& sheet;
    const std::vector<std::string>& strings;

    void readCell(pugi::xml_node cell, int row, int column) {
        const std::string_view type = attribute(cell, "t");
        const std::string value = child(cell, "v").text().get();
        if (type == "inlineStr") {
            sheet.setText(row, column, stringItem(child(cell, "is")));
        } else if (type == "s") {
            const auto index = parseInteger(trim(value));
            if (!index || *index < 0 || static_cast<std::size_t>(*index) >= strings.size())
                sheet.fail(row, column, "refers to a shared string \"" + value + "\" the workbook does not have");
            sheet.setText(row, column, strings[static_cast<std::size_t>(*index)]);
        } else if (type == "b") {
            sheet.setText(row, column, trim(value) == "1" ? "TRUE" : "FALSE");
        } else if (type == "str" || type == "e" || type == "d") {
            sheet.setText(row, column, value);
        } else if (!value.empty()) {
            const auto number = parseNumber(trim(value));
            if (!number) sheet.fail(row, column, "holds \"" + value + "\" where the workbook promises a number");
            sheet.setNumber(row, column, *number);
        }
    }

    // Cells carry their reference ("B4"); without one a cell follows the
    // previous one, a row the previous row.
    void readRows(pugi::xml_node sheetData) {
        int row = -1;
        forChildren(sheetData, "row", [&](pugi::xml_node rowNode) {
            const std::string_view number = attribute(rowNode, "r");
            const auto given = parseInteger(trim(number));
            if (!number.empty() && (!given || *given < 1 || *given > kMaxSheetRows))
                sheet.fail(fmt::format("a row is numbered \"{}\"", number));
            row = number.empty() ? row + 1 : *given - 1;
            if (row >= kMaxSheetRows) sheet.fail("more rows than a sheet can hold");
            int column = -1;
            forChildren(rowNode, "c", [&](pugi::xml_node cell) {
                const std::string_view reference = attribute(cell, "r");
                if (reference.empty()) {
                    ++column;
                } else {
                    const auto at = parseCellName(reference);
                    if (!at) sheet.fail(fmt::format("a cell in row {} has the reference \"{}\"", row + 1, reference));
                    column = at->second;
                    row = at->first;
                }
                if (column >= kMaxSheetColumns) sheet.fail(fmt::format("row {} has more cells than a sheet can hold", row + 1));
                readCell(cell, row, column);
            });
        });
    }
};

Spreadsheet readWorkbook(PartSource& zip, std::string_view sheetName) {
    const std::string& fileName = zip.fileName();
    const std::string workbookName = "xl/workbook.xml", relationsName = "xl/_rels/workbook.xml.rels";
    const auto workbook = parseXml(zip, workbookName, zip.requiredPart(workbookName));
    const auto sheets = sheetsOf(workbook);
    if (sheets.empty()) zip.fail(workbookName, "lists no sheet");
    const SheetEntry* entry = &sheets.front();
    if (!sheetName.empty()) {
        entry = nullptr;
        std::string names;
        for (const auto& sheet : sheets) {
            if (!entry && iequals(sheet.name, sheetName)) entry = &sheet;
            names += (names.empty() ? "\"" : ", \"") + sheet.name + "\"";
        }
        if (!entry)
            throw SpreadsheetError(kTitle, fmt::format("{}: the workbook has no sheet \"{}\" (its sheets: {})", fileName,
                                                       sheetName, names));
    }
    const auto relations = parseXml(zip, relationsName, zip.requiredPart(relationsName));
    const auto target = relationTarget(relations, entry->relation);
    if (!target) zip.fail(relationsName, "does not say where sheet \"" + entry->name + "\" is");
    const auto strings = sharedStrings(zip);
    const auto document = parseXml(zip, *target, zip.requiredPart(*target));
    Spreadsheet sheet(fileName, entry->name, true);
    CellReader{sheet, strings}.readRows(child(child(document, "worksheet"), "sheetData"));
    return sheet;
}

}  // namespace

Spreadsheet parseXlsx(std::string_view bytes, const std::string& fileName, std::string_view sheet) {
    ZipArchive zip(bytes, fileName);
    return readWorkbook(zip, sheet);
}

Spreadsheet parseXlsxParts(const XlsxParts& parts, const std::string& fileName, std::string_view sheet) {
    MapParts source(parts, fileName);
    return readWorkbook(source, sheet);
}

}  // namespace orvane
