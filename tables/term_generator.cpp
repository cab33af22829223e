#include "tables/term_generator.hpp"

#include <algorithm>
#include <bit>
#include <cmath>
#include <map>
#include <stdexcept>
#include <tuple>

#include <Eigen/Sparse>

#include "core/angular.hpp"
#include "tables/slater_determinants.hpp"
#include "core/eigen_solver.hpp"

namespace orvane {

namespace {

constexpr double kZero = 1e-9;

using SparseState = std::vector<std::pair<int, double>>;

std::vector<int> sectorIndices(const DeterminantSpace& space, int twiceMS, int ML) {
    std::vector<int> indices;
    for (int i = 0; i < space.size(); ++i) {
        const auto mask = space.masks[static_cast<std::size_t>(i)];
        if (twiceSpinProjectionOf(mask) == twiceMS && orbitalProjectionOf(mask) == ML)
            indices.push_back(i);
    }
    return indices;
}

// Images of the sector's determinants under a one-body operator, as the
// columns of a sparse (space x sector) matrix.
Eigen::SparseMatrix<double> sectorImages(const OneBodyOperator& op, const DeterminantSpace& space,
                                         const std::vector<int>& sector) {
    std::vector<Eigen::Triplet<double>> triplets;
    for (std::size_t j = 0; j < sector.size(); ++j) {
        Eigen::VectorXd unit = Eigen::VectorXd::Zero(space.size());
        unit[sector[j]] = 1.0;
        const Eigen::VectorXd image = applyOneBody(op, space, unit);
        for (int i = 0; i < image.size(); ++i)
            if (image[i] != 0.0) triplets.emplace_back(i, static_cast<int>(j), image[i]);
    }
    Eigen::SparseMatrix<double> matrix(space.size(), static_cast<int>(sector.size()));
    matrix.setFromTriplets(triplets.begin(), triplets.end());
    return matrix;
}

// Orthonormal basis of the states of the sector annihilated by S+ and L+.
std::vector<Eigen::VectorXd> highestWeightStates(const DeterminantSpace& space, int twiceS, int L) {
    const auto sector = sectorIndices(space, twiceS, L);
    if (sector.empty()) return {};
    const auto lRaise = sectorImages(orbitalRaising(), space, sector);
    const auto sRaise = sectorImages(spinRaising(), space, sector);
    const Eigen::MatrixXd gram =
        Eigen::MatrixXd(lRaise.transpose() * lRaise) + Eigen::MatrixXd(sRaise.transpose() * sRaise);
    const auto eigen = symmetricEigenpairsDivideAndConquer(gram);
    if (eigen.status != EigenStatus::Ok) throw std::runtime_error("eigen solver failed on a highest-weight sector");
    std::vector<Eigen::VectorXd> states;
    for (int c = 0; c < eigen.values.size(); ++c) {
        // Eigenvalues of S-S+ + L-L+ in the sector are 0 or at least 1.
        if (eigen.values[c] > 0.5) break;
        Eigen::VectorXd state = Eigen::VectorXd::Zero(space.size());
        for (std::size_t j = 0; j < sector.size(); ++j)
            state[sector[j]] = eigen.vectors(static_cast<int>(j), c);
        states.push_back(std::move(state));
    }
    return states;
}

// Casimir of R7 (Racah 1949; stored form 5 G(R7)) and of G2 (stored form 12 G(G2)):
// 5 G(R7) = sum_{k=1,3,5} (2k+1) U(k).U(k), 12 G(G2) = 3 sum_{k=1,5} (2k+1) U(k).U(k).
struct CasimirImages {
    Eigen::VectorXd quasiSpin, r7, g2;
};

CasimirImages casimirImages(const DeterminantSpace& space, const Eigen::VectorXd& state) {
    const Eigen::VectorXd x1 = applyUnitTensorScalar(1, space, state);
    const Eigen::VectorXd x3 = applyUnitTensorScalar(3, space, state);
    const Eigen::VectorXd x5 = applyUnitTensorScalar(5, space, state);
    return {applyQuasiSpinProduct(space, state), 3.0 * x1 + 7.0 * x3 + 11.0 * x5,
            3.0 * (3.0 * x1 + 11.0 * x5)};
}

int decodeSeniority(int n, double quasiSpinValue) {
    // Q+Q- = (n - v)(16 - n - v)/4 in f^n.
    for (int v = n % 2; v <= n; v += 2)
        if (std::abs((n - v) * (16.0 - n - v) / 4.0 - quasiSpinValue) < 1e-6) return v;
    throw std::runtime_error("quasi-spin eigenvalue matches no seniority");
}

std::array<int, 3> decodeR7(double stored) {
    for (int w1 = 0; w1 <= 2; ++w1)
        for (int w2 = 0; w2 <= w1; ++w2)
            for (int w3 = 0; w3 <= w2; ++w3)
                if (std::abs(r7StoredValue({w1, w2, w3}) - stored) < 1e-6) return {w1, w2, w3};
    throw std::runtime_error("R7 Casimir eigenvalue matches no label");
}

std::array<int, 2> decodeG2(double stored) {
    for (int u1 = 0; u1 <= 4; ++u1)
        for (int u2 = 0; u2 <= u1; ++u2)
            if (std::abs(g2StoredValue({u1, u2}) - stored) < 1e-6) return {u1, u2};
    throw std::runtime_error("G2 Casimir eigenvalue matches no label");
}

// Each group (orthonormal columns) split into the eigenspaces of the operator.
std::vector<Eigen::MatrixXd> splitByEigenvalue(const Eigen::MatrixXd& op,
                                               const std::vector<Eigen::MatrixXd>& groups) {
    std::vector<Eigen::MatrixXd> result;
    for (const auto& basis : groups) {
        const Eigen::MatrixXd projected = basis.transpose() * op * basis;
        const auto eigen = symmetricEigenpairsDivideAndConquer(0.5 * (projected + projected.transpose()));
        if (eigen.status != EigenStatus::Ok) throw std::runtime_error("eigen solver failed on a Casimir operator");
        const Eigen::MatrixXd vectors = basis * eigen.vectors;
        int start = 0;
        for (int c = 1; c <= vectors.cols(); ++c)
            if (c == vectors.cols() || eigen.values[c] - eigen.values[c - 1] > 0.5) {
                result.push_back(vectors.middleCols(start, c - start));
                start = c;
            }
    }
    return result;
}

std::vector<GeneratedTerm> termsOfSector(int n, int twiceS, int L) {
    const auto& space = determinantSpace(n);
    const auto states = highestWeightStates(space, twiceS, L);
    const int d = static_cast<int>(states.size());
    if (d == 0) return {};
    std::vector<CasimirImages> images;
    for (const auto& s : states) images.push_back(casimirImages(space, s));
    Eigen::MatrixXd q(d, d), r(d, d), g(d, d);
    for (int a = 0; a < d; ++a)
        for (int b = 0; b < d; ++b) {
            q(a, b) = states[static_cast<std::size_t>(a)].dot(images[static_cast<std::size_t>(b)].quasiSpin);
            r(a, b) = states[static_cast<std::size_t>(a)].dot(images[static_cast<std::size_t>(b)].r7);
            g(a, b) = states[static_cast<std::size_t>(a)].dot(images[static_cast<std::size_t>(b)].g2);
        }
    // The three commute: diagonalise G(G2), then G(R7) inside each of its
    // eigenspaces, then Q+Q- inside each joint eigenspace. Stored values of
    // distinct labels differ by at least 1, so each step is well conditioned.
    std::vector<Eigen::MatrixXd> groups{Eigen::MatrixXd::Identity(d, d)};
    for (const Eigen::MatrixXd* op : {&g, &r, &q}) groups = splitByEigenvalue(*op, groups);
    std::vector<GeneratedTerm> terms;
    for (const auto& group : groups)
        for (int c = 0; c < group.cols(); ++c) {
            const Eigen::VectorXd x = group.col(c);
            GeneratedTerm term;
            term.twiceS = twiceS;
            term.L = L;
            term.seniority = decodeSeniority(n, x.dot(q * x));
            term.w = decodeR7(x.dot(r * x));
            term.u = decodeG2(x.dot(g * x));
            term.state = Eigen::VectorXd::Zero(space.size());
            for (int a = 0; a < d; ++a) term.state += x[a] * states[static_cast<std::size_t>(a)];
            terms.push_back(std::move(term));
        }
    return terms;
}

auto orderKey(const GeneratedTerm& t) { return std::make_tuple(-t.twiceS, t.L, t.seniority, t.w, t.u); }

void assignLabels(std::vector<GeneratedTerm>& terms) {
    std::map<std::pair<int, int>, int> counts;
    for (const auto& t : terms) ++counts[{t.twiceS, t.L}];
    std::map<std::pair<int, int>, int> seen;
    for (auto& t : terms) {
        t.label = std::string{static_cast<char>('1' + t.twiceS), orbitalLetter(t.L)};
        const int index = ++seen[{t.twiceS, t.L}];
        if (counts[{t.twiceS, t.L}] > 1) t.label += std::to_string(index);
    }
}

// State of a term lowered to (M_S, M_L), kept as its non-zero components.
SparseState sparseOf(const Eigen::VectorXd& v) {
    SparseState s;
    for (int i = 0; i < v.size(); ++i)
        if (std::abs(v[i]) > 1e-14) s.emplace_back(i, v[i]);
    return s;
}

// |J M-1> = J- |J M> / sqrt(J(J+1) - M(M-1)), in twice-J integers.
double loweringNorm(int twiceJ, int twiceM) {
    return std::sqrt((twiceJ * (twiceJ + 2) - twiceM * (twiceM - 2)) / 4.0);
}

std::map<std::pair<int, int>, SparseState> loweredStates(const DeterminantSpace& space,
                                                        const GeneratedTerm& parent) {
    std::map<std::pair<int, int>, SparseState> result;
    const auto lLower = orbitalLowering();
    const auto sLower = spinLowering();
    Eigen::VectorXd spinTop = parent.state;
    for (int twiceMS = parent.twiceS; twiceMS >= std::max(-parent.twiceS, parent.twiceS - 2);
         twiceMS -= 2) {
        Eigen::VectorXd v = spinTop;
        for (int ML = parent.L; ML >= std::max(-parent.L, parent.L - 6); --ML) {
            result[{twiceMS, ML}] = sparseOf(v);
            if (ML > -parent.L) v = applyOneBody(lLower, space, v) / loweringNorm(2 * parent.L, 2 * ML);
        }
        if (twiceMS > -parent.twiceS)
            spinTop = applyOneBody(sLower, space, spinTop) / loweringNorm(parent.twiceS, twiceMS);
    }
    return result;
}

// <psi | a+_p | phi> with psi dense over f^n and phi sparse over f^(n-1).
double creationOverlap(const DeterminantSpace& lower, const DeterminantSpace& upper,
                       const Eigen::VectorXd& psi, const SparseState& phi, int p) {
    double sum = 0.0;
    for (const auto& [index, value] : phi) {
        const unsigned mask = lower.masks[static_cast<std::size_t>(index)];
        if (mask & (1u << p)) continue;
        const double sign = (std::popcount(mask & ((1u << p) - 1u)) % 2 == 0) ? 1.0 : -1.0;
        sum += value * sign * psi[upper.indexOfMask[mask | (1u << p)]];
    }
    return sum;
}

}  // namespace

std::vector<GeneratedTerm> classifyTerms(int n) {
    if (n < 0 || n > 7) throw std::invalid_argument("classifyTerms needs 0 <= n <= 7");
    std::vector<GeneratedTerm> terms;
    for (int twiceS = n; twiceS >= 0; twiceS -= 2)
        for (int L = 0; L < static_cast<int>(kOrbitalLetters.size()); ++L)
            for (auto& t : termsOfSector(n, twiceS, L)) terms.push_back(std::move(t));
    std::stable_sort(terms.begin(), terms.end(),
                     [](const GeneratedTerm& a, const GeneratedTerm& b) { return orderKey(a) < orderKey(b); });
    assignLabels(terms);
    return terms;
}

// Racah 1943 / Judd 1967: (psibar } psi) = n^(-1/2) sum CG CG <psi S L S L| a+_{m sigma} |psibar Mbar>.
Eigen::MatrixXd parentageFromStates(int n, const std::vector<GeneratedTerm>& terms,
                                    const std::vector<GeneratedTerm>& parents) {
    const auto& lower = determinantSpace(n - 1);
    const auto& upper = determinantSpace(n);
    Eigen::MatrixXd cfp = Eigen::MatrixXd::Zero(static_cast<int>(terms.size()),
                                                static_cast<int>(parents.size()));
    const double norm = 1.0 / std::sqrt(static_cast<double>(n));
    for (std::size_t j = 0; j < parents.size(); ++j) {
        const auto& parent = parents[j];
        const auto lowered = loweredStates(lower, parent);
        for (std::size_t i = 0; i < terms.size(); ++i) {
            const auto& term = terms[i];
            if (std::abs(term.twiceS - parent.twiceS) != 1) continue;
            if (std::abs(term.L - parent.L) > kShellL || term.L + parent.L < kShellL) continue;
            double sum = 0.0;
            for (int twiceSigma : {1, -1})
                for (int m = -kShellL; m <= kShellL; ++m) {
                    const int twiceMS = term.twiceS - twiceSigma;
                    const int ML = term.L - m;
                    const auto found = lowered.find({twiceMS, ML});
                    if (found == lowered.end()) continue;
                    const double cg = ClebschGordan2(parent.twiceS, twiceMS, 1, twiceSigma, term.twiceS,
                                                     term.twiceS) *
                                      ClebschGordan2(2 * parent.L, 2 * ML, 2 * kShellL, 2 * m,
                                                     2 * term.L, 2 * term.L);
                    if (cg == 0.0) continue;
                    sum += cg * creationOverlap(lower, upper, term.state, found->second,
                                                spinOrbital(m, twiceSigma));
                }
            cfp(static_cast<int>(i), static_cast<int>(j)) = norm * sum;
        }
    }
    return cfp;
}

void fixPairsAndPhases(std::vector<GeneratedTerm>& terms, Eigen::MatrixXd& cfp) {
    const int count = static_cast<int>(terms.size());
    // Pair rule: rotate (A, B) so that B has no parentage in the first parent
    // in which the pair has any.
    for (int i = 0; i + 1 < count; ++i) {
        if (orderKey(terms[static_cast<std::size_t>(i)]) != orderKey(terms[static_cast<std::size_t>(i + 1)]))
            continue;
        for (int j = 0; j < cfp.cols(); ++j) {
            const double a = cfp(i, j), b = cfp(i + 1, j);
            const double r = std::hypot(a, b);
            if (r < kZero) continue;
            const Eigen::VectorXd rowA = (a * cfp.row(i) + b * cfp.row(i + 1)) / r;
            const Eigen::VectorXd rowB = (-b * cfp.row(i) + a * cfp.row(i + 1)) / r;
            cfp.row(i) = rowA;
            cfp.row(i + 1) = rowB;
            cfp(i + 1, j) = 0.0;
            auto& sa = terms[static_cast<std::size_t>(i)].state;
            auto& sb = terms[static_cast<std::size_t>(i + 1)].state;
            const Eigen::VectorXd stateA = (a * sa + b * sb) / r;
            const Eigen::VectorXd stateB = (-b * sa + a * sb) / r;
            sa = stateA;
            sb = stateB;
            break;
        }
    }
    // Phase rule: the first non-zero coefficient of every term is positive.
    for (int i = 0; i < count; ++i)
        for (int j = 0; j < cfp.cols(); ++j) {
            if (std::abs(cfp(i, j)) < kZero) continue;
            if (cfp(i, j) < 0) {
                cfp.row(i) *= -1.0;
                terms[static_cast<std::size_t>(i)].state *= -1.0;
            }
            break;
        }
    // Exact zeros where the selection rules give zero (rounding noise removed).
    cfp = cfp.unaryExpr([](double x) { return std::abs(x) < 1e-12 ? 0.0 : x; });
}

std::vector<GeneratedConfiguration> generateConfigurations(int maxElectrons) {
    if (maxElectrons < 0 || maxElectrons > 7)
        throw std::invalid_argument("generateConfigurations needs 0 <= n <= 7");
    std::vector<GeneratedConfiguration> configurations;
    GeneratedConfiguration empty;
    GeneratedTerm vacuum;
    vacuum.label = "1S";
    vacuum.state = Eigen::VectorXd::Ones(1);
    empty.terms.push_back(vacuum);
    configurations.push_back(std::move(empty));
    for (int n = 1; n <= maxElectrons; ++n) {
        GeneratedConfiguration configuration;
        configuration.electrons = n;
        configuration.terms = classifyTerms(n);
        configuration.cfp = parentageFromStates(n, configuration.terms,
                                                configurations.back().terms);
        fixPairsAndPhases(configuration.terms, configuration.cfp);
        configurations.push_back(std::move(configuration));
    }
    return configurations;
}

TermRecord termRecordOf(const GeneratedTerm& term) {
    return {term.label, term.seniority, r7StoredValue(term.w), g2StoredValue(term.u)};
}

}  // namespace orvane
