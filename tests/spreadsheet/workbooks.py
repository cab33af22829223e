"""Workbooks for the spreadsheet tests: read FILE (every cell of the first
sheet as "row col kind value"), levels FILE (written by openpyxl), part FILE
KIND (put together from XML parts)."""
import sys
import zipfile


def read(path):
    import openpyxl
    sheet = openpyxl.load_workbook(path).worksheets[0]
    for row in sheet.iter_rows():
        for cell in row:
            if cell.value is not None:
                kind = "n" if isinstance(cell.value, (int, float)) else "s"
                value = repr(float(cell.value)) if kind == "n" else cell.value
                print(cell.row - 1, cell.column - 1, kind, value)


def levels(path):
    import openpyxl
    book = openpyxl.Workbook()
    book.active.title = "Notes"
    book.active["A1"] = "levels of Nd3+ in a garnet"
    sheet = book.create_sheet("Levels")
    sheet.append(["2026-01-31"])
    sheet.append(["Remark", "State Label", "Obs.Energy", "g-factor", "State#"])
    sheet.append(["ground", "4I9/2", 0, 2.95, 1])
    sheet.append([None, "4I9/2(3/2)", 132.25, None, 3])
    sheet.append(["withheld", "4I11/2", "[1987.5]", None, None])
    sheet.append(["unobserved", "4I13/2", None, None, None])
    sheet.append([None, None, "5012.125", 1.5, 7])
    book.save(path)


WORKBOOK = ('<?xml version="1.0"?><x:workbook xmlns:x="http://schemas.openxmlformats.org/spreadsheetml/2006/main" '
            'xmlns:r="http://schemas.openxmlformats.org/officeDocument/2006/relationships">'
            '<x:sheets><x:sheet name="Data" sheetId="1" r:id="rId7"/></x:sheets></x:workbook>')
RELATIONS = ('<?xml version="1.0"?><Relationships xmlns="http://schemas.openxmlformats.org/package/2006/relationships">'
             '<Relationship Id="rId7" Target="/xl/worksheets/data.xml" Type="worksheet"/></Relationships>')
STRINGS = ('<sst xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main"><si><t>State Label</t></si>'
           '<si><r><t>Obs.</t></r><r><rPr><b/></rPr><t>Energy</t></r><rPh><t>x</t></rPh></si></sst>')
SHEET = ('<worksheet xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main"><sheetData>'
         '<row r="2"><c r="B2" t="s"><v>0</v></c><c t="s"><v>1</v></c><c t="b"><v>1</v></c></row>'
         '<row><c r="B3" t="inlineStr"><is><t>2H11/2</t></is></c><c r="C3"><v>19012.5</v></c>'
         '<c r="D3" t="str"><v>ok</v></c></row></sheetData></worksheet>')

# The parts of each KIND: a well-formed workbook with namespace prefixes,
# rich-text runs, inline strings, a boolean, cells without references; and
# its damaged forms.
PARTS = {
    "prefixed": {},
    "broken-xml": {"xl/worksheets/data.xml": SHEET[:-40]},
    "no-sheet-part": {"xl/worksheets/data.xml": None},
    "bad-string-index": {"xl/worksheets/data.xml": SHEET.replace("<v>1</v></c><c t=\"b\"", "<v>9</v></c><c t=\"b\"")},
}


def part(path, kind):
    parts = {"xl/workbook.xml": WORKBOOK, "xl/_rels/workbook.xml.rels": RELATIONS,
             "xl/sharedStrings.xml": STRINGS, "xl/worksheets/data.xml": SHEET}
    parts.update(PARTS[kind])
    with zipfile.ZipFile(path, "w", zipfile.ZIP_DEFLATED) as archive:
        for name, text in parts.items():
            if text is not None:
                archive.writestr(name, text)


if __name__ == "__main__":
    {"read": lambda: read(sys.argv[2]), "levels": lambda: levels(sys.argv[2]),
     "part": lambda: part(sys.argv[2], sys.argv[3])}[sys.argv[1]]()
