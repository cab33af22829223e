#pragma once
// The superposition-model editor: the ligand table (distance R, theta, phi in
// degrees, or lattice coordinates converted to polar ones), the reference
// distance R0 and the intrinsic parameters b_k and exponents t_k, the Bkq
// computed from them (with the R0 = 0 Abort/Retry/Ignore question), the
// estimate of intrinsic parameters from the Bkq of the parameter editor, and
// the copy of the Bkq into the parameter editor.
//
// The sums, the R0 question, the transfer into a parameter set and the
// estimate are those of `orvane sm` (interactive/superposition_runs.hpp).
// Lengths R and R0 in one unit (the ligand file's, normally angstrom). A
// ligand row whose three cells are empty is skipped; a cell that is not a
// number is refused with a message naming the row. Every computed table of
// Bkq and every estimate is logged in the log book.
//
// The editor's last data is kept in "cfp/smdata.txt" of the per-user data
// folder (params/ligand_file.hpp layout), written after each calculation and
// read when an editor opens; the lines of each calculation are appended to
// "cfp/smdata.log" there.
#include <QMainWindow>
#include <filesystem>
#include <vector>

#include "params/cf_records.hpp"
#include "params/superposition.hpp"

class QCheckBox;
class QLineEdit;
class QTableWidget;

namespace orvane::app {

class MainWindow;

class SuperpositionEditor final : public QMainWindow {
    Q_OBJECT
public:
    explicit SuperpositionEditor(MainWindow& main, QWidget* parent = nullptr);

    void setLigands(const std::vector<params::Ligand>& ligands);
    // The ligand rows (the selected ones only with `selectedOnly`); throws UserError for a bad cell.
    std::vector<params::Ligand> ligands(bool selectedOnly = false) const;
    // R0, b_k, t_k and the Stevens-type switch as the fields show them (empty cells 0).
    params::SuperpositionParameters parameters() const;
    void setParameters(const params::SuperpositionParameters& parameters);

    // Reads a ligand file (params/ligand_file.hpp) into the table, and R0 when it gives one.
    bool loadLigandFile(const std::filesystem::path& file);
    // The Bkq of all rows (or the selected ones) into the result table; false when nothing was computed.
    bool calculate(bool selectedOnly = false);
    // The last computed Bkq (no rows before the first calculation).
    const params::CfTable& result() const { return result_; }
    // Replaces the crystal-field rows of the parameter editor by the Bkq; false when there are none.
    bool copyToParameterEditor();
    // Fits b_k to the Bkq of the parameter editor at the exponents t_k and shows them.
    bool estimate();
    // The rows read as lattice coordinates x y z, converted with the cell a, b, c and the asked angles.
    bool convertLatticeToPolar();
    bool rotatePositions();

    QTableWidget& ligandTable() { return *ligandTable_; }
    QTableWidget& resultTable() { return *resultTable_; }
    QLineEdit& referenceDistance() { return *r0_; }

private:
    QWidget* createLigandPanel();
    QWidget* createParameterPanel();
    void createMenus();
    void showResult();
    void showError(const std::exception& error) const;
    std::vector<int> ligandRows(bool selectedOnly) const;
    std::filesystem::path dataFile(const char* name) const;
    void restoreLastData();
    void keepData(const params::SuperpositionParameters& parameters, const std::vector<std::string>& lines) const;

    MainWindow& main_;
    QTableWidget* ligandTable_ = nullptr;
    QTableWidget* intrinsic_ = nullptr;
    QTableWidget* resultTable_ = nullptr;
    QLineEdit* r0_ = nullptr;
    QLineEdit* lattice_[3] = {};
    QCheckBox* stevensType_ = nullptr;
    params::CfTable result_;
};

}  // namespace orvane::app
