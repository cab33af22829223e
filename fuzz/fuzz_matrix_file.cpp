// libFuzzer target: any byte string given to the matrix-file reader must
// either parse to a finite Hermitian matrix or be refused with a UserError
// that names the file and a line.
//   fuzz_matrix_file work/ examples/ -max_len=2048 -timeout=5
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "core/user_error.hpp"
#include "interactive/interactive_eigen.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    try {
        const orvane::MatrixFile file = orvane::parseMatrixFile(text, "fuzz.txt");
        const auto& m = file.matrix;
        if (m.rows() != m.cols() || m.rows() < 1 || !m.allFinite()) std::abort();
        if ((m - m.adjoint()).cwiseAbs().maxCoeff() > 1e-6 * (1.0 + m.cwiseAbs().maxCoeff())) std::abort();
    } catch (const orvane::UserError& error) {
        if (!error.where() || error.where()->file != "fuzz.txt" || error.where()->line < 1) std::abort();
    }
    return 0;
}
