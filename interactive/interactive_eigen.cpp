#include "interactive/interactive_eigen.hpp"

#include <algorithm>
#include <cmath>
#include <complex>

#include "core/atomic_file.hpp"
#include "core/number_format.hpp"
#include "core/text.hpp"
#include "core/user_error.hpp"

namespace orvane {

namespace {

using Complex = std::complex<double>;

constexpr std::string_view kNumberPicture = "##0.0000000";

[[noreturn]] void fail(const std::string& fileName, int line, const std::string& problem) {
    throw UserError(kEigenSolverErrorTitle, problem, FileLocation{fileName, line});
}

bool isCommentOrBlank(std::string_view line) {
    const std::string_view content = trim(line);
    return content.empty() || content.front() == '#' || content.front() == '!';
}

// One entry: "x" (real) or "re,im" (complex, no blanks inside).
std::optional<Complex> parseEntry(std::string_view field) {
    const auto comma = field.find(',');
    if (comma == std::string_view::npos) {
        const auto value = parseNumber(field);
        if (!value) return std::nullopt;
        return Complex(*value, 0.0);
    }
    const auto re = parseNumber(field.substr(0, comma));
    const auto im = parseNumber(field.substr(comma + 1));
    if (!re || !im) return std::nullopt;
    return Complex(*re, *im);
}

int parseOrder(std::string_view line, const std::string& fileName, int lineNumber) {
    const auto fields = splitFields(line);
    const auto order = fields.size() == 1 ? parseInteger(fields[0]) : std::nullopt;
    if (!order || *order < 1 || *order > kMaxMatrixFileOrder)
        fail(fileName, lineNumber,
             "expected the order of the matrix, an integer from 1 to " +
                 std::to_string(kMaxMatrixFileOrder) + ", but found \"" + std::string(trim(line)) +
                 "\"");
    return *order;
}

void parseRow(std::string_view line, int row, MatrixFile& file, const std::string& fileName,
              int lineNumber) {
    const auto fields = splitFields(line);
    const auto n = file.matrix.cols();
    if (static_cast<Eigen::Index>(fields.size()) != n)
        fail(fileName, lineNumber,
             "row " + std::to_string(row + 1) + " has " + std::to_string(fields.size()) +
                 " entries; the matrix has order " + std::to_string(n));
    for (Eigen::Index k = 0; k < n; ++k) {
        const auto entry = parseEntry(fields[static_cast<std::size_t>(k)]);
        if (!entry)
            fail(fileName, lineNumber,
                 "entry " + std::to_string(k + 1) + " of row " + std::to_string(row + 1) +
                     " is not a finite number or \"re,im\" pair: \"" +
                     fields[static_cast<std::size_t>(k)] + "\"");
        file.matrix(row, k) = *entry;
        if (entry->imag() != 0.0) file.complexEntries = true;
    }
}

// Hermiticity within kHermitianTolerance; the problem is reported on the line of
// the later row (the element below the diagonal).
void checkHermitian(const MatrixFile& file, const std::vector<int>& rowLines,
                    const std::string& fileName) {
    const Eigen::MatrixXcd& h = file.matrix;
    const double tolerance = kHermitianTolerance * std::max(1.0, h.cwiseAbs().maxCoeff());
    for (Eigen::Index i = 0; i < h.rows(); ++i) {
        const int line = rowLines[static_cast<std::size_t>(i)];
        if (std::abs(h(i, i).imag()) > tolerance)
            fail(fileName, line,
                 "diagonal entry " + std::to_string(i + 1) +
                     " has an imaginary part; the matrix must be Hermitian");
        for (Eigen::Index k = 0; k < i; ++k)
            if (std::abs(h(i, k) - std::conj(h(k, i))) > tolerance)
                fail(fileName, line,
                     "entry (" + std::to_string(i + 1) + "," + std::to_string(k + 1) +
                         ") is not the complex conjugate of entry (" + std::to_string(k + 1) +
                         "," + std::to_string(i + 1) + "); the matrix must be Hermitian");
    }
}

// The vector times the phase that makes its largest component (the first within
// rounding of the largest) real and positive.
Eigen::VectorXcd withCanonicalPhase(const Eigen::VectorXcd& vector) {
    const double largest = vector.cwiseAbs().maxCoeff();
    Eigen::Index pivot = 0;
    while (std::abs(vector(pivot)) < largest - 1e-9) ++pivot;
    if (largest == 0.0) return vector;
    return vector * (std::conj(vector(pivot)) / std::abs(vector(pivot)));
}

// A part that rounds to zero in the picture is printed as zero, never "-0.0000000".
double cleanedPart(double value) { return std::abs(value) < 5e-8 ? 0.0 : value; }

std::string formatComponent(Complex value, bool complexEntries) {
    const std::string re = formatNumber(cleanedPart(value.real()), kNumberPicture);
    if (!complexEntries) return re;
    return std::string(trim(re)) + "," +
           std::string(trim(formatNumber(cleanedPart(value.imag()), kNumberPicture)));
}

}  // namespace

MatrixFile parseMatrixFile(std::string_view text, const std::string& fileName) {
    MatrixFile file;
    std::vector<int> rowLines;
    int order = 0;
    int lineNumber = 0;
    std::size_t start = 0;
    while (start < text.size()) {
        const std::size_t end = std::min(text.find('\n', start), text.size());
        const std::string_view line = trim(text.substr(start, end - start));
        start = end + 1;
        ++lineNumber;
        if (isCommentOrBlank(line)) continue;
        if (order == 0) {
            order = parseOrder(line, fileName, lineNumber);
            file.matrix = Eigen::MatrixXcd::Zero(order, order);
            continue;
        }
        const int row = static_cast<int>(rowLines.size());
        if (row == order)
            fail(fileName, lineNumber,
                 "unexpected data after the last row of the matrix (order " +
                     std::to_string(order) + ")");
        parseRow(line, row, file, fileName, lineNumber);
        rowLines.push_back(lineNumber);
    }
    lineNumber = std::max(1, lineNumber);
    if (order == 0) fail(fileName, lineNumber, "the file holds no matrix (the order is missing)");
    if (static_cast<int>(rowLines.size()) < order)
        fail(fileName, lineNumber,
             "the file ends after " + std::to_string(rowLines.size()) + " of " +
                 std::to_string(order) + " rows");
    checkHermitian(file, rowLines, fileName);
    return file;
}

MatrixFile readMatrixFile(const std::filesystem::path& path) {
    return parseMatrixFile(readTextFile(path, kMaxMatrixFileBytes), path.string());
}

std::vector<std::string> eigenReportLines(const HermitianEigenResult& result, bool complexEntries) {
    std::vector<std::string> lines{"Eigenvectors"};
    for (Eigen::Index j = 0; j < result.eigenvalues.size(); ++j) {
        std::string line = "eigenvalue " +
                           formatNumber(cleanedPart(result.eigenvalues(j)), kNumberPicture) +
                           "  eigenvector";
        const Eigen::VectorXcd vector = withCanonicalPhase(result.eigenvectors.col(j));
        for (Eigen::Index k = 0; k < vector.size(); ++k)
            line += " " + formatComponent(vector(k), complexEntries);
        lines.push_back(std::move(line));
    }
    return lines;
}

void solveMatrixFile(const std::filesystem::path& path, LogBook& log, Asker& asker) {
    MatrixFile file = readMatrixFile(path);
    const HermitianEigenResult result =
        HermitianEigen(packHermitian(file.matrix), kEigenVectors, "", log);
    if (result.status == HermitianEigenStatus::NoConvergence)
        asker.askChoice("Eigenvalue error",
                        "Eigenvalue error - no convergence after 30 iterations for eigenvalue # " +
                            std::to_string(result.failedEigenvalue),
                        Buttons::Ok);
    if (result.status != HermitianEigenStatus::Ok)
        throw UserError(kEigenSolverErrorTitle,
                        "The eigenvalues of " + path.string() + " could not be computed");
    // Entries near the largest double overflow in the reduction: no Inf is reported.
    if (!result.eigenvalues.allFinite() || !result.eigenvectors.allFinite())
        throw UserError(kEigenSolverErrorTitle, "The eigenvalues of " + path.string() +
                                                    " are not finite numbers (entries too large)");
    for (const std::string& line : eigenReportLines(result, file.complexEntries))
        log.appendLine(line);
}

}  // namespace orvane
