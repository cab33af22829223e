#pragma once
// Reproducible random Hermitian matrices for eigen-solver tests and benchmarks:
// off-diagonal real and imaginary parts uniform in [-1, 1], the real diagonal
// uniform in [-diagonalScale, diagonalScale].
#include <complex>
#include <random>

#include <Eigen/Dense>

namespace orvane::test {

inline Eigen::MatrixXcd randomHermitian(int n, unsigned seed, double diagonalScale) {
    std::mt19937 generator(seed);
    std::uniform_real_distribution<double> uniform(-1.0, 1.0);
    Eigen::MatrixXcd h(n, n);
    for (int i = 0; i < n; ++i) {
        for (int k = 0; k < i; ++k) {
            h(i, k) = std::complex<double>(uniform(generator), uniform(generator));
            h(k, i) = std::conj(h(i, k));
        }
        h(i, i) = diagonalScale * uniform(generator);
    }
    return h;
}

}  // namespace orvane::test
