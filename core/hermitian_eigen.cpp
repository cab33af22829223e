#include "core/hermitian_eigen.hpp"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <charconv>
#include <complex>
#include <fstream>
#include <iterator>
#include <system_error>
#include <vector>
#include <unistd.h>

#include <fmt/format.h>

#include "core/atomic_file.hpp"
#include "core/eigen_solver.hpp"
#include "core/lapack.hpp"
#include "core/number_format.hpp"
#include "core/user_error.hpp"

namespace orvane {

namespace {

using Complex = std::complex<double>;

// Reflectors applied together in the back-transformation from the scratch file.
constexpr int kReflectorBlock = 32;

// Length of a LAPACK work array of `length` entries plus the spare columns.
std::size_t paddedLength(int length, int n) {
    return static_cast<std::size_t>(length) +
           static_cast<std::size_t>(lapack::kPaddingColumns) * static_cast<std::size_t>(n);
}

template <typename Matrix>
void releaseMemory(Matrix& matrix) {
    Matrix().swap(matrix);  // the swapped-out storage is freed with the temporary
}

// The result of zhetrd with uplo = 'U': T = Q^H H Q is real symmetric
// tridiagonal (diagonal d, off-diagonal e); Q = H(n-1) ... H(1) with
// H(r) = I - tau(r) v v^H, v(r) = 1, v(r+1..n) = 0 and v(1..r-1) stored in
// column r+1 of `reflectors` above the super-diagonal (1-based).
struct TridiagonalReduction {
    Eigen::MatrixXcd reflectors;
    Eigen::VectorXd diagonal;
    Eigen::VectorXd offDiagonal;
    std::vector<Complex> tau;
};

// The packed lower triangle presented to LAPACK as the upper triangle of a
// column-major complex array: entry (k, i), k < i, holds H(k, i), the conjugate
// of the packed element H(i, k) = A(i, k) + i A(k, i). The array has
// lapack::kPaddingColumns spare columns after the n used ones.
Eigen::MatrixXcd upperTriangleForLapack(const Eigen::MatrixXd& packed) {
    const Eigen::Index n = packed.rows();
    Eigen::MatrixXcd upper = Eigen::MatrixXcd::Zero(n, n + lapack::kPaddingColumns);
    for (Eigen::Index i = 0; i < n; ++i) {
        for (Eigen::Index k = 0; k < i; ++k) upper(k, i) = Complex(packed(i, k), -packed(k, i));
        upper(i, i) = Complex(packed(i, i), 0.0);
    }
    return upper;
}

TridiagonalReduction reduceToTridiagonal(Eigen::MatrixXcd matrix) {
    const int n = static_cast<int>(matrix.rows());
    TridiagonalReduction reduction;
    reduction.diagonal.resize(n);
    reduction.offDiagonal = Eigen::VectorXd::Zero(n);  // n - 1 used; one spare for dstedc
    // tau also serves zhetrd's unblocked step as the result vector of zhemv,
    // which the same kernel family over-reads: padded like the work arrays.
    reduction.tau.assign(paddedLength(std::max(1, n - 1), n), Complex(0.0, 0.0));
    int info = 0;
    int lwork = -1;
    Complex workSize;
    zhetrd_("U", &n, matrix.data(), &n, reduction.diagonal.data(), reduction.offDiagonal.data(),
            reduction.tau.data(), &workSize, &lwork, &info, 1);
    lwork = std::max(1, static_cast<int>(workSize.real()));
    std::vector<Complex> work(paddedLength(lwork, n));
    zhetrd_("U", &n, matrix.data(), &n, reduction.diagonal.data(), reduction.offDiagonal.data(),
            reduction.tau.data(), work.data(), &lwork, &info, 1);
    reduction.reflectors = std::move(matrix);
    return reduction;
}

// Eigenvalues (ascending, in `diagonal`) and eigenvectors of the tridiagonal
// matrix by divide and conquer. The real n x n vectors are computed into the
// front half of the complex n x n array `vectors` (allocated here) and spread
// into complex numbers in place, so that no second n x n array is needed.
int tridiagonalEigenpairs(TridiagonalReduction& reduction, Eigen::MatrixXcd& vectors) {
    const int n = static_cast<int>(reduction.diagonal.size());
    vectors.resize(n, n);
    double* realPart = reinterpret_cast<double*>(vectors.data());
    int info = 0;
    int lwork = -1;
    int liwork = -1;
    double workSize = 0.0;
    int iworkSize = 0;
    dstedc_("I", &n, reduction.diagonal.data(), reduction.offDiagonal.data(), realPart, &n,
            &workSize, &lwork, &iworkSize, &liwork, &info, 1);
    lwork = std::max(1, static_cast<int>(workSize));
    liwork = std::max(1, iworkSize);
    {
        std::vector<double> work(paddedLength(lwork, n));
        std::vector<int> iwork(static_cast<std::size_t>(liwork));
        dstedc_("I", &n, reduction.diagonal.data(), reduction.offDiagonal.data(), realPart, &n,
                work.data(), &lwork, iwork.data(), &liwork, &info, 1);
    }
    if (info != 0) {
        releaseMemory(vectors);
        return info;
    }
    // Complex number k occupies doubles 2k and 2k+1 >= k: walking backwards
    // never overwrites a real entry that is still to be read.
    Complex* complexPart = vectors.data();
    for (std::size_t k = static_cast<std::size_t>(n) * static_cast<std::size_t>(n); k-- > 0;)
        complexPart[k] = Complex(realPart[k], 0.0);
    return 0;
}

// A scratch file of a unique name ("orvane-heigen-XXXXXX", mkstemp) in the
// given folder, removed when the run leaves the scope, finished or not, and
// by SIGINT/SIGTERM: two runs never share or leave one.
class ScratchFileGuard {
public:
    explicit ScratchFileGuard(const std::filesystem::path& folder) {
        std::string name = (folder / "orvane-heigen-XXXXXX").string();
        const int descriptor = ::mkstemp(name.data());
        if (descriptor < 0)
            throw UserError("File error", "Cannot create a scratch file in " + folder.string() + ": " +
                                              std::strerror(errno));
        ::close(descriptor);
        path_ = name;
        removeOnSignals(path_);
    }
    ~ScratchFileGuard() {
        std::error_code ignored;
        std::filesystem::remove(path_, ignored);
        keepOnSignals(path_);
    }
    ScratchFileGuard(const ScratchFileGuard&) = delete;
    ScratchFileGuard& operator=(const ScratchFileGuard&) = delete;
    const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
};

// Writes rows i = 2..n (1-based) of the strict lower triangle of the reduced
// matrix: for j = 1..i-1 the real and imaginary part of element (i, j), which is
// the conjugate of the upper-triangle entry (j, i) LAPACK holds. Doubles are
// written in their shortest exact form, so the file reads back bit for bit.
void writeScratchFile(const std::filesystem::path& path, const Eigen::MatrixXcd& reduced) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    if (!out) throw UserError("File error", "Cannot write the scratch file " + path.string());
    const Eigen::Index n = reduced.rows();
    std::string line;
    for (Eigen::Index i = 1; i < n; ++i) {
        line.clear();
        for (Eigen::Index j = 0; j < i; ++j) {
            const Complex lower = std::conj(reduced(j, i));
            fmt::format_to(std::back_inserter(line), "{} {} ", lower.real(), lower.imag());
        }
        line += '\n';
        out.write(line.data(), static_cast<std::streamsize>(line.size()));
    }
    out.close();
    if (!out) throw UserError("File error", "Cannot write the scratch file " + path.string());
}

// Reads one scratch line of `count` complex entries (the lower-triangle
// elements) into `entries`.
void parseScratchLine(const std::string& line, Eigen::Index count, std::vector<Complex>& entries,
                      const std::filesystem::path& path, int lineNumber) {
    entries.resize(static_cast<std::size_t>(count));
    const char* cursor = line.data();
    const char* const end = line.data() + line.size();
    auto nextDouble = [&](double& value) {
        while (cursor < end && *cursor == ' ') ++cursor;
        const auto parsed = std::from_chars(cursor, end, value);
        if (parsed.ec != std::errc()) return false;
        cursor = parsed.ptr;
        return true;
    };
    for (Eigen::Index j = 0; j < count; ++j) {
        double re = 0.0;
        double im = 0.0;
        if (!nextDouble(re) || !nextDouble(im))
            throw UserError("File error", "The scratch file " + path.string() + " is damaged",
                            FileLocation{path.string(), lineNumber});
        entries[static_cast<std::size_t>(j)] = Complex(re, im);
    }
}

// vectors := Q vectors with the reflectors read back from the scratch file, in
// the order written. File row i = r + 1 carries reflector H(r): Q Z =
// H(n-1) ... H(1) Z applies H(1) first, i.e. the rows in file order. Rows are
// taken kReflectorBlock at a time and applied as one block reflector (LAPACK
// zlarft with direct = 'B' for H(k+b-1) ... H(k), then zlarfb).
void applyReflectorsFromFile(const std::filesystem::path& path, const std::vector<Complex>& tau,
                             Eigen::MatrixXcd& vectors) {
    std::ifstream in(path, std::ios::binary);
    if (!in) throw UserError("File error", "Cannot read the scratch file " + path.string());
    const int n = static_cast<int>(vectors.rows());
    const int reflectorCount = n - 1;
    std::string line;
    std::vector<Complex> entries;
    std::vector<Complex> work(paddedLength(n * kReflectorBlock, n));
    Eigen::MatrixXcd triangular(kReflectorBlock, kReflectorBlock);
    int lineNumber = 0;
    for (int first = 1; first <= reflectorCount; first += kReflectorBlock) {
        const int count = std::min(kReflectorBlock, reflectorCount - first + 1);
        const int rows = first + count - 1;  // H(first .. first+count-1) touch rows 1..rows
        Eigen::MatrixXcd block = Eigen::MatrixXcd::Zero(rows, count + lapack::kPaddingColumns);
        for (int c = 0; c < count; ++c) {
            const int reflector = first + c;  // file row reflector + 1 holds `reflector` entries
            if (!std::getline(in, line))
                throw UserError("File error",
                                "The scratch file " + path.string() + " ends too early",
                                FileLocation{path.string(), lineNumber + 1});
            ++lineNumber;
            parseScratchLine(line, reflector, entries, path, lineNumber);
            // v(1..r-1) is the conjugate of what the file holds (the upper-triangle
            // entries); entry r is the super-diagonal, replaced by the implicit 1.
            for (int j = 0; j + 1 < reflector; ++j)
                block(j, c) = std::conj(entries[static_cast<std::size_t>(j)]);
            block(reflector - 1, c) = Complex(1.0, 0.0);
        }
        const int ldt = kReflectorBlock;
        zlarft_("B", "C", &rows, &count, block.data(), &rows, tau.data() + (first - 1),
                triangular.data(), &ldt, 1, 1);
        zlarfb_("L", "N", "B", "C", &rows, &n, &count, block.data(), &rows, triangular.data(),
                &ldt, vectors.data(), &n, work.data(), &n, 1, 1, 1, 1);
    }
}

// The first eigenvalue that LAPACK could not converge, 1-based, from its info
// > 0: dstedc reports the failing sub-matrix as row * (n + 1) + last row;
// dsterf the count of off-diagonal elements left unconverged.
int failedEigenvalueFromInfo(int info, int n, bool divideAndConquer) {
    const int first = divideAndConquer ? info / (n + 1) : n - info + 1;
    return std::clamp(first, 1, std::max(1, n));
}

std::filesystem::path scratchFolder(const HermitianEigenOptions& options) {
    if (!options.scratchDirectory.empty()) return options.scratchDirectory;
    std::error_code error;
    const auto folder = std::filesystem::temp_directory_path(error);
    return error ? std::filesystem::path(".") : folder;
}

void writePrintFile(std::string_view printFile, const HermitianEigenResult& result,
                    LogBook& log) {
    log.appendLine("Eigenvalues and eigenvectors  print out ##");
    writeFileAtomically(std::filesystem::path(std::string(printFile)),
                        printFileText(result.eigenvalues, result.eigenvectors));
}

}  // namespace

Eigen::MatrixXd packHermitian(const Eigen::MatrixXcd& h) {
    const Eigen::Index n = h.rows();
    Eigen::MatrixXd packed(n, n);
    for (Eigen::Index i = 0; i < n; ++i) {
        for (Eigen::Index k = 0; k < i; ++k) {
            packed(i, k) = h(i, k).real();
            packed(k, i) = h(i, k).imag();
        }
        packed(i, i) = h(i, i).real();
    }
    return packed;
}

Eigen::MatrixXcd unpackHermitian(const Eigen::MatrixXd& packed) {
    const Eigen::Index n = packed.rows();
    Eigen::MatrixXcd h(n, n);
    for (Eigen::Index i = 0; i < n; ++i) {
        for (Eigen::Index k = 0; k < i; ++k) {
            h(i, k) = Complex(packed(i, k), packed(k, i));
            h(k, i) = std::conj(h(i, k));
        }
        h(i, i) = Complex(packed(i, i), 0.0);
    }
    return h;
}

void reportNoConvergence(int eigenvalueNumber, int mode, LogBook& log) {
    if (mode >= kEigenValuesSilent) return;
    const std::string number = std::to_string(eigenvalueNumber);
    log.appendLine("error - no convergence after 30");
    log.appendLine("iterations for eigenvalue # " + number);
}

std::string printFileText(const Eigen::VectorXd& eigenvalues, const Eigen::MatrixXcd& eigenvectors) {
    constexpr Eigen::Index kComponentsPerLine = 5;
    std::string text = "\neigenvalue   eigenvector\n";
    for (Eigen::Index j = 0; j < eigenvalues.size(); ++j) {
        text += "Statevector: " + std::to_string(j + 1) + " " +
                formatNumber(eigenvalues(j), "#0.0000000") + "\n";
        for (Eigen::Index k = 0; k < eigenvectors.rows(); ++k) {
            text += formatNumber(eigenvectors(k, j).real(), "#0.0000000 ");
            text += formatNumber(eigenvectors(k, j).imag(), "#0.0000000 ");
            if ((k + 1) % kComponentsPerLine == 0 || k + 1 == eigenvectors.rows()) text += '\n';
        }
    }
    return text;
}

HermitianEigenResult HermitianEigen(Eigen::MatrixXd packed, int mode, std::string_view printFile,
                                    LogBook& log, const HermitianEigenOptions& options) {
    HermitianEigenResult result;
    if (mode < 0 || packed.rows() != packed.cols() || !packed.allFinite()) {
        result.status = HermitianEigenStatus::InvalidInput;
        return result;
    }
    const int n = static_cast<int>(packed.rows());
    if (n == 0) return result;

    const bool wantVectors = mode < kEigenValuesOnly;
    int info = 0;
    if (wantVectors && n > options.diskThreshold) {
        Eigen::MatrixXcd upper = upperTriangleForLapack(packed);
        releaseMemory(packed);
        TridiagonalReduction reduction = reduceToTridiagonal(std::move(upper));
        const ScratchFileGuard scratch(scratchFolder(options));
        writeScratchFile(scratch.path(), reduction.reflectors);
        releaseMemory(reduction.reflectors);  // before the eigenvector array exists
        result.usedScratchFile = true;
        if (options.afterScratchWritten) options.afterScratchWritten(scratch.path());
        info = tridiagonalEigenpairs(reduction, result.eigenvectors);
        if (info == 0) applyReflectorsFromFile(scratch.path(), reduction.tau, result.eigenvectors);
        result.eigenvalues = std::move(reduction.diagonal);
    } else {
        // In memory: the engine's solver (divide and conquer, as the steps above).
        HermitianEigenWorkspace workspace;
        auto lower = workspace.matrix(n);
        for (int k = 0; k < n; ++k) {
            lower(k, k) = Complex(packed(k, k), 0.0);
            for (int i = k + 1; i < n; ++i) lower(i, k) = Complex(packed(i, k), packed(k, i));
        }
        releaseMemory(packed);
        const auto status = workspace.solve({wantVectors, kAllEigenvalues, EigenDriver::DivideAndConquer});
        if (status == EigenStatus::LapackError || status == EigenStatus::InvalidInput) {
            result.status = HermitianEigenStatus::InvalidInput;
            return result;
        }
        info = status == EigenStatus::NoConvergence ? workspace.lapackInfo() : 0;
        result.eigenvalues = workspace.values();
        if (wantVectors && info == 0) result.eigenvectors = workspace.vectors();
    }

    if (info != 0) {
        result.status = HermitianEigenStatus::NoConvergence;
        result.failedEigenvalue = failedEigenvalueFromInfo(info, n, wantVectors);
        result.statesFound = result.failedEigenvalue - 1;
        reportNoConvergence(result.failedEigenvalue, mode, log);
        return result;
    }
    result.statesFound = n;
    if (mode == kEigenVectorsAndPrintFile && !isNullOutputName(printFile))
        writePrintFile(printFile, result, log);
    return result;
}

}  // namespace orvane
