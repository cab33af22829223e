#include "interactive/property_dialogs.hpp"

#include <algorithm>

#include <fmt/format.h>

#include "core/text.hpp"

namespace orvane {

namespace {

constexpr const char* kTitle = "State vectors";

// The numbers of an answer, or std::nullopt when a field is not a number.
std::optional<std::vector<double>> numbersOf(const std::string& answer) {
    std::vector<double> numbers;
    for (const auto& field : splitAnswerFields(answer)) {
        const auto value = parseNumber(field);
        if (!value) return std::nullopt;
        numbers.push_back(*value);
    }
    return numbers;
}

bool isStateNumber(double value, int stateCount) {
    return value == static_cast<int>(value) && value >= 1 && value <= stateCount;
}

// Asks until `accept` takes the numbers of an answer (returning "" ) or the user cancels.
template <typename Accept>
bool askNumbers(Asker& asker, const Question& question, Accept accept) {
    while (true) {
        const auto answer = asker.askLine(question);
        if (!answer) return false;
        const auto numbers = numbersOf(*answer);
        const std::string problem = numbers ? accept(*numbers) : "every field must be a number";
        if (problem.empty()) return true;
        asker.showMessage(kTitle, problem);
    }
}

}  // namespace

std::optional<std::vector<int>> askSpinHamiltonianStates(Asker& asker, int stateCount) {
    std::vector<int> states;
    const bool answered = askNumbers(
        asker, {"Give a list of state number to calculate spin Hamiltonian parameters:", kTitle, ""},
        [&](const std::vector<double>& numbers) -> std::string {
            states.clear();
            for (double n : numbers) {
                if (!isStateNumber(n, stateCount)) return fmt::format("state numbers run from 1 to {}", stateCount);
                states.push_back(static_cast<int>(n));
            }
            return states.empty() ? "give at least one state number" : "";
        });
    if (!answered) return std::nullopt;
    return states;
}

std::optional<StateRange> askStateRange(Asker& asker, int stateCount) {
    StateRange range;
    const bool answered = askNumbers(
        asker,
        {"Give initial state#, [lower limit and] upper limit of state# to calculate the matrix elements of the "
         "magnetic moment:",
         kTitle, ""},
        [&](const std::vector<double>& n) -> std::string {
            if (n.size() < 2 || n.size() > 3) return "give the initial state, an optional lower limit and the upper limit";
            for (double v : n)
                if (!isStateNumber(v, stateCount)) return fmt::format("state numbers run from 1 to {}", stateCount);
            range = {static_cast<int>(n[0]), n.size() == 3 ? static_cast<int>(n[1]) : 1, static_cast<int>(n.back())};
            return range.first <= range.last ? "" : "the lower limit is above the upper limit";
        });
    if (!answered) return std::nullopt;
    return range;
}

std::optional<TemperatureRequest> askSusceptibilityTemperatures(Asker& asker) {
    TemperatureRequest request;
    const bool answered = askNumbers(
        asker,
        {"Give lower and upper temperature and temperature interval for magnetic susceptibility calculation:\n"
         "Note: 0 is taken as 0.01 and smart temperature interval will be applied if it is omitted.",
         kTitle, "0.001 300"},
        [&](std::vector<double> n) -> std::string {
            if (n.empty()) n = {0.001, 300.0};
            if (n.size() < 2 || n.size() > 3) return "give the lower and upper temperature and an optional interval";
            if (n[0] < 0 || n[1] < n[0] || (n.size() == 3 && n[2] <= 0))
                return "temperatures must rise from a lower value >= 0, the interval must be positive";
            request = {n[0] == 0 ? 0.01 : n[0], n[1], n.size() == 3 ? std::optional(n[2]) : std::nullopt};
            return "";
        });
    if (!answered) return std::nullopt;
    return request;
}

std::optional<double> askCurieTemperature(Asker& asker) {
    double temperature = 0.0;
    const bool answered = askNumbers(
        asker,
        {"Give temperature (0.01 for low temperature or 1000 for high temperature) for the calculation of Curie "
         "constant for magnetic susceptibility:\n"
         "Note: 0 is taken as 0.001 and smart temperature interval will be applied if it is omitted.",
         kTitle, ""},
        [&](const std::vector<double>& n) -> std::string {
            if (n.size() != 1 || n[0] < 0) return "give one temperature >= 0 in K";
            temperature = n[0] == 0 ? 0.001 : n[0];
            return "";
        });
    if (!answered) return std::nullopt;
    return temperature;
}

std::optional<double> askPopulationTemperature(Asker& asker) {
    double temperature = 0.0;
    const bool answered = askNumbers(
        asker, {"Give temperature in K for the calculation of emission/absorption transition probabilities:", kTitle, ""},
        [&](const std::vector<double>& n) -> std::string {
            if (n.size() != 1 || n[0] <= 0) return "give one temperature > 0 in K";
            temperature = n[0];
            return "";
        });
    if (!answered) return std::nullopt;
    return temperature;
}

std::optional<std::array<double, 4>> askAxisLimits(Asker& asker, const std::string& current) {
    std::array<double, 4> limits{};
    const bool answered = askNumbers(
        asker, {"Give limits of axes:min  x, max x, min y and max y", "Axis Limits", current},
        [&](const std::vector<double>& n) -> std::string {
            if (n.size() != 4) return "give min x, max x, min y and max y";
            if (!(n[0] < n[1]) || !(n[2] < n[3])) return "each minimum must lie below its maximum";
            std::copy(n.begin(), n.end(), limits.begin());
            return "";
        });
    if (!answered) return std::nullopt;
    return limits;
}

std::string tooManyRowsQuestion(std::size_t rowLimit) {
    return "There are too many data >" + std::to_string(rowLimit) + ". Still continue (by ignoring the remaining data)?";
}

bool askContinueWithoutExtraRows(Asker& asker, std::size_t rowLimit) {
    return asker.askChoice("Magnetic susceptibility data file error", tooManyRowsQuestion(rowLimit), Buttons::OkCancel) ==
           Choice::Ok;
}

}  // namespace orvane
