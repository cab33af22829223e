#pragma once
// A grid of named free-ion rows (name, value): the five main rows of the
// electrostatic form and the spin-orbit zeta, or the other named rows, which
// the user may add and delete.
#include <QTableWidget>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "engine/parameter_set.hpp"

namespace orvane::app {

// The number of a typed value for the parameter `name`; std::nullopt when unreadable.
using FreeIonReader = std::function<std::optional<double>(const std::string& name, const std::string& text)>;

class FreeIonGrid final : public QTableWidget {
    Q_OBJECT
public:
    FreeIonGrid(FreeIonReader reader, QWidget* parent = nullptr);

    void setRows(const std::vector<FreeIonRow>& rows);
    // The rows as typed; completely blank rows are left out unless `keepBlank`.
    std::vector<FreeIonRow> rows(bool keepBlank = false) const;
    void addRow();
    void deleteSelectedRows();

private:
    FreeIonReader reader_;
};

}  // namespace orvane::app
