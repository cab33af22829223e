#pragma once
// The fitting workspace's three tables as Qt grids: filled from the
// workspace's rows, and the cells the user may type (option, Final_fit,
// State#, State Label, Obs.Energy) read back into them.
#include <QTableWidget>

#include "fit/fit_workspace.hpp"

namespace orvane::app {

// "Parameter", "Initial", "Previous", "Final_fit", the option and, for a
// linked row, "is related to" and its master.
void showParameterRows(QTableWidget& table, const std::vector<FitParameter>& rows);
// Reads the option and Final_fit columns; a cell that does not read keeps its value.
void readParameterEdits(const QTableWidget& table, std::vector<FitParameter>& rows);

// "State#", "State Label", "Obs.Energy" (withheld as "[E]"), "Calc.Energy",
// "E_Diff.", "Fit_Err"; the label cell coloured light blue or red.
void showLevelRows(QTableWidget& table, const std::vector<ObservedLevel>& levels);
// Reads State#, State Label and Obs.Energy (brackets withhold); rows whose
// energy does not read are dropped.
std::vector<ObservedLevel> readLevelEdits(const QTableWidget& table, const std::vector<ObservedLevel>& levels);

// "g-factor Label", "Obs.g", "Calc.g", "g_Diff.".
void showGFactorRows(QTableWidget& table, const std::vector<ObservedGFactor>& rows);

// The colours of the label cell.
QColor labelColour(LabelColour colour);

}  // namespace orvane::app
