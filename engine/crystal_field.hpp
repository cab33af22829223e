#pragma once
// The crystal-field stage between free-ion levels.
//
// The tensor operators U(k) (k = 2, 4, 6) are first carried into the basis of
// the free-ion eigenstates ("transformed reduced matrix elements"); the
// |a J MJ> states are split into blocks by 2 MJ mod 2p (p the fold of the
// site's main axis), and each block is built and diagonalised alone.
//
// Wybourne normalisation, per electron C(k)_q = sqrt(4 pi/(2k+1)) Y_kq:
//   H_CF = sum_k [ B(k,0) C(k)_0 + sum_{q>0} ( B(k,q) C(k)_q + (-1)^q B(k,q)* C(k)_-q ) ]
// so a row (k, q >= 0, Re, Im) contributes
//   Re B(k,q) [C(k)_q + (-1)^q C(k)_-q] + i Im B(k,q) [C(k)_q - (-1)^q C(k)_-q].
// One component matrix per (k, q) and per block is built once ("real" part:
// the coefficient of Re B(k,q)); a new parameter set only recombines them.
// Parameters are in any one energy unit; levels come out in it.
//
// The correlation crystal-field operators (engine/correlation_crystal_field.hpp)
// are spin-scalar tensors of orbital rank k like U(k): they enter the same
// form with their own term tables, their own parameters and without the
// factor <f||C(k)||f> (their parameters multiply the operators themselves).
//
// Time reversal (Kramers ions, half-integral MJ). With the phases of this
// basis (real free-ion vectors over spin-first |SLJ> states, real reduced
// elements) the antiunitary map
//   T v: (T v)(a, J, -M) = (-1)^(J-M) conj(v(a, J, M))
// carries the block of residue r onto the block of residue -r: with
// B(k,-q) = (-1)^q B(k,q)* and the 3j symmetry (J k J'; M -q -M') =
// (-1)^(J+k+J') (J k J'; -M q M') one finds
//   <a J -M|H|a' J' -M'> = (-1)^(J-M) (-1)^(J'-M') conj(<a J M|H|a' J' M'>)
// (the leftover phase (-1)^(4M) is +1), so no per-level phase is needed: every
// level a takes the phase +1. T maps an eigenvector of block r to an
// eigenvector of block -r with the same energy, and T^2 = (-1)^(2J) = -1.
#include <map>
#include <vector>

#include <Eigen/Dense>
#include <Eigen/Sparse>

#include "core/eigen_solver.hpp"
#include "engine/configuration_tables.hpp"
#include "engine/free_ion.hpp"
#include "engine/j_basis.hpp"

namespace orvane {

// The operators of the crystal-field stage: the crystal field proper (U(k)
// with <f||C(k)||f>) and the correlation crystal fields.
enum class CrystalFieldOperator { Standard, Sccf, Lccf, OccfA, OccfB };

// Spin-scalar term tensors of orbital rank k = 2, 4, 6 (index 0..2) of the
// correlation operators, term x term; an empty matrix is a rank not used.
using TermTensorSet = std::array<Eigen::MatrixXd, 3>;
using CorrelationTermTensors = std::map<CrystalFieldOperator, TermTensorSet>;

// <a J || U(k) || a' J'> between free-ion levels, k = 2, 4, 6 (index 0..2).
struct TransformedTensors {
    std::vector<int> levelTwiceJ;
    std::array<Eigen::MatrixXd, 3> unitTensor;  // levels x levels
    std::map<CrystalFieldOperator, TermTensorSet> correlation;  // the same for the correlation operators
};

// Edmonds 1957, eq. 7.1.7: <SLJ||U(k)||SL'J'> = (-1)^(S+L'+J+k) sqrt([J][J']) {L J S; J' L' k} <SL||U(k)||SL'>,
// then summed over the free-ion eigenvector components (real). The
// correlation term tensors are carried over by the same formula.
TransformedTensors transformTensors(const EngineTables& tables, const FreeIonOperators& operators,
                                    const FreeIonSolution& freeIon,
                                    const CorrelationTermTensors& correlation = {});

struct CrystalFieldKey {
    int k = 0;
    int q = 0;  // 0 <= q <= k
    CrystalFieldOperator op = CrystalFieldOperator::Standard;
    friend bool operator==(const CrystalFieldKey&, const CrystalFieldKey&) = default;
};

// <SLJ||X(k)||S'L'J'> of a spin-scalar orbital tensor between the |SL J>
// states of a basis, from its term table (Edmonds 1957, eq. 7.1.7, spin
// coupled first): (-1)^(S+L'+J+k) sqrt([J][J']) {L J S; J' L' k} <SL||X(k)||SL'>.
Eigen::MatrixXd tensorBetweenJStates(const EngineTables& tables, const JBasis& basis,
                                     const Eigen::MatrixXd& termTable, int k);

// The coefficient matrix of Re B(k,q) (partnerSign +1: C_q + (-1)^q C_-q) or
// of Im B(k,q) divided by i (partnerSign -1: C_q - (-1)^q C_-q) in one residue
// block whose states' `level` index the rows and columns of `reduced`
// (<level J||X(k)||level' J'>), with the key's normalisation.
Eigen::SparseMatrix<double> crystalFieldBlockComponent(const ResidueBlock& block, const Eigen::MatrixXd& reduced,
                                                       const CrystalFieldKey& key, double partnerSign);

struct CrystalFieldOperators {
    int fold = 1;
    std::vector<ResidueBlock> blocks;
    std::vector<CrystalFieldKey> keys;
    // realPart[key][block]: the coefficient matrix of Re B(k,q) in that block,
    // sparse (C(k)_q only links MJ to MJ - q).
    std::vector<std::vector<Eigen::SparseMatrix<double>>> realPart;
    // imaginaryPart[key][block] = A, real antisymmetric, such that i A is the
    // coefficient matrix of Im B(k,q) (q > 0; zero for q = 0). Built only for
    // the complex engine; empty otherwise.
    std::vector<std::vector<Eigen::SparseMatrix<double>>> imaginaryPart;
};

// True when every key has q a multiple of the fold (no key couples blocks).
bool keysFitFold(const std::vector<CrystalFieldKey>& keys, int fold);

// Components of the given keys (k even 2..6, 0 <= q <= k, q a multiple of the
// fold: checked with keysFitFold by the caller).
CrystalFieldOperators buildCrystalFieldOperators(const TransformedTensors& tensors,
                                                 const std::vector<CrystalFieldKey>& keys, int fold,
                                                 bool withImaginaryParts = false);

// A crystal-field level of a run: its energy and block (the vectors are the
// model's, engine/model.hpp).
struct CrystalFieldLevel {
    double energy = 0.0;
    int block = 0;  // index into CrystalFieldOperators::blocks
};

struct CrystalFieldSolution {
    EigenStatus status = EigenStatus::Ok;
    std::vector<CrystalFieldLevel> levels;  // ascending energy
};

// The Hermitian matrix of block b between free-ion levels: free-ion energies
// on the diagonal plus Re B(k,q) x real component + i Im B(k,q) x A (the
// "/printhm" listing of complex blocks).
Eigen::MatrixXcd complexBlockMatrix(const CrystalFieldOperators& operators, std::size_t b,
                                    const std::vector<double>& freeIonEnergies,
                                    const std::vector<double>& realParameters,
                                    const std::vector<double>& imaginaryParameters);

}  // namespace orvane
