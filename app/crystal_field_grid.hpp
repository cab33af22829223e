#pragma once
// The grid of crystal-field rows k, q, Re, Im in the editor's convention and
// energy unit; in real mode the Im column is hidden (its cells are kept). The
// same grid with a leading kind column holds the correlation crystal-field
// sections: consecutive rows of one kind form a section.
#include <QTableWidget>
#include <vector>

#include "engine/editor_checks.hpp"
#include "engine/parameter_set.hpp"

namespace orvane::app {

class CrystalFieldGrid final : public QTableWidget {
    Q_OBJECT
public:
    enum class Content { CrystalField, CorrelationSections };
    explicit CrystalFieldGrid(Content content, QWidget* parent = nullptr);

    void setRows(const std::vector<CrystalFieldRow>& rows);
    std::vector<CrystalFieldRow> rows() const;  // filled rows; a blank Im is "0"
    void setSections(const std::vector<CorrelationSection>& sections);
    std::vector<CorrelationSection> sections() const;
    // Every row as typed, for checkCrystalFieldTable.
    std::vector<CrystalFieldEntry> entries() const;

    void setComplexMode(bool complex);
    bool complexMode() const { return complex_; }
    // The heading of the value columns, e.g. "Value (cm^-1)".
    void setValueHeading(const QString& heading);
    void addRow();
    void deleteSelectedRows();

private:
    int column(int field) const { return first_ + field; }  // field 0 k, 1 q, 2 Re, 3 Im
    void fillRow(int row, const CrystalFieldRow& values);
    CrystalFieldRow rowAt(int row) const;
    CorrelationKind kindAt(int row) const;
    void setKind(int row, CorrelationKind kind);

    int first_ = 0;
    bool complex_ = true;
};

}  // namespace orvane::app
