// The factorial table shared by every angular-momentum coefficient: 0! to 79!
// in double precision, filled once by the recurrence i! = i x (i-1)!.
#include <string>

#include "core/angular.hpp"

namespace orvane {

namespace {

std::string describeRange(int argument, const std::string& where) {
    return "factorial argument " + std::to_string(argument) +
           " is outside the table of 0! to 79! (computing " + where + ")";
}

std::array<double, 80> buildFactorialTable() {
    std::array<double, 80> table{};
    table[0] = 1.0;
    for (std::size_t i = 1; i < table.size(); ++i) table[i] = static_cast<double>(i) * table[i - 1];
    return table;
}

}  // namespace

FactorialRangeError::FactorialRangeError(int argument, const std::string& where)
    : std::out_of_range(describeRange(argument, where)), argument_(argument) {}

const std::array<double, 80>& FactorialTable() {
    static const std::array<double, 80> table = buildFactorialTable();
    return table;
}

double Factorial(int i, const char* where) {
    if (i < 0 || i >= static_cast<int>(FactorialTable().size()))
        throw FactorialRangeError(i, where != nullptr ? where : "Factorial");
    return FactorialTable()[static_cast<std::size_t>(i)];
}

}  // namespace orvane
