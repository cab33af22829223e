#pragma once
// The prepared model of one ion at one site: everything about the Hamiltonian
// that does not depend on the parameter values, built once; `solve` then costs
// a weighted sum and the diagonalisation of the blocks. A fit or a
// differential-evolution search calls `solve` thousands of times on one model.
//
// Basis. The crystal-field stage works in the |SL J MJ> states of the tables'
// configuration (f^n, or f^(14-n) on the conjugate route), split into blocks
// by 2 MJ mod 2p (p the fold). Within a block the states are ordered by MJ,
// then by the J block of the free-ion stage, then by their place in that J
// block, so the free-ion Hamiltonian (diagonal in J and MJ) fills square
// diagonal patches of the block, one per (MJ, J). This is the same
// Hamiltonian as free-ion diagonalisation followed by the crystal field
// between free-ion levels (a unitary change of basis within each J): the
// eigenvalues are identical and the eigenvectors come out directly on
// |SL J MJ>.
//
// Components. Free ion: one matrix per parameter and J block (engine/free_ion.hpp).
// Crystal field: one sparse matrix per key and block for Re B(k,q), and for
// the complex model one for Im B(k,q) (see engine/crystal_field.hpp for the
// normalisation). The route's signs (conjugate shell: zeta, T2', T3..T8 and
// every B(k,q) change sign) are applied inside the model: parameters and
// derivatives are those of the actual configuration.
//
// Time reversal. The blocks of residues r and -r (mod 2p) have the same
// spectrum, for even and odd n: T (T v)(s, J, -M) = (-1)^(J-M) conj v(s, J, M)
// maps one onto the other (derivation in engine/crystal_field.hpp). Only one
// of each pair is diagonalised; the partner's vectors are mapped by T.
//
// Threads. A model is immutable after it is built; `solve` may run on many
// threads at once, each with its own `ModelWorkspace`.
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include <Eigen/Dense>
#include <Eigen/Sparse>

#include "core/eigen_solver.hpp"
#include "core/log_book.hpp"
#include "engine/configuration_tables.hpp"
#include "engine/crystal_field.hpp"
#include "engine/free_ion.hpp"
#include "engine/parameter_registry.hpp"
#include "engine/parameter_set.hpp"
#include "engine/parameter_vector.hpp"

namespace orvane {

// What the model is built for.
struct ModelSetup {
    int electrons = 0;            // n of f^n, 1..14
    int fold = 1;                 // of the site's main axis
    bool crystalField = true;     // false: free ion only
    bool complex = false;         // Hermitian blocks with Im B(k,q)
    bool actualShell = false;     // f^n tables for n > 7 ("/actualshell")
    std::optional<int> minMultiplicity;  // "/spinmmin= n"
    SpinSpinForm spinSpin = SpinSpinForm::Rank2;
    MagneticTableFiles magneticFiles = MagneticTableFiles::Operators;
    std::vector<CrystalFieldKey> keys;  // crystal-field operators in use (q a multiple of the fold)
};

// The setup of a parameter file's run: its switches, fold and crystal-field keys.
ModelSetup modelSetupOf(const ParameterSet& set, bool crystalField, bool complex);

struct SolveRequest {
    bool freeIon = false;      // also the free-ion levels (always when the model has no crystal field)
    bool vectors = false;      // eigenvectors of the crystal-field levels
    int lowest = kAllEigenvalues;  // only the m lowest crystal-field levels
    // Derivatives dE/dp of every returned level by these parameters
    // (Hellmann-Feynman; needs no vectors in the result). For a degenerate
    // level sum them over its partners: the sum does not depend on the basis
    // chosen inside the level.
    std::vector<ParameterId> derivatives;
    // Only for these levels (0-based positions in the ascending result, each
    // below the number of levels returned); empty: every level. Row i of
    // `ModelSolution::derivatives` then belongs to derivativeLevels[i].
    std::vector<int> derivativeLevels;
    // Each derivative is that of the mean energy of the level's degenerate
    // group (energies within kDegenerateEnergyTolerance of their neighbours):
    // independent of the basis chosen inside the group.
    bool averageDegenerateLevels = false;
    // Called after each crystal-field block is diagonalised (time-reversed
    // partner blocks included) with the blocks done and their number: the
    // progress of a long run. Runs on the solving thread.
    std::function<void(int done, int total)> blockSolved = {};
};

// Energies closer than this (cm^-1 or the set's unit; plus 1e-9 relative)
// belong to one degenerate level.
inline constexpr double kDegenerateEnergyTolerance = 1e-5;
inline bool degenerateEnergies(double lower, double upper) {
    return upper - lower <= kDegenerateEnergyTolerance + 1e-9 * (upper < 0 ? -upper : upper);
}

struct ModelLevel {
    double energy = 0.0;
    int block = 0;  // crystal field: index into Model::blocks(); free ion: the J block
    Eigen::VectorXd vector;          // real model, over the block's states (when asked)
    Eigen::VectorXcd complexVector;  // complex model
};

struct ModelSolution {
    EigenStatus status = EigenStatus::Ok;
    FreeIonSolution freeIon;          // when asked (free-ion levels, J-block vectors)
    std::vector<ModelLevel> levels;   // crystal-field levels, ascending
    // levels (or request.derivativeLevels) x request.derivatives (free-ion levels for a free-ion model)
    Eigen::MatrixXd derivatives;
};

// A state of a crystal-field block: |SL J MJ> with `jState` the index into the
// free-ion basis (JBasis::states).
struct ModelState {
    int jState = 0;
    int twiceJ = 0;
    int twiceM = 0;
};

struct ModelBlock {
    int residue = 0;  // 2 MJ mod 2p
    std::vector<ModelState> states;
    int partner = -1;  // an earlier block with the same spectrum (time reversal), or -1
};

class ModelWorkspace;

class Model {
public:
    // Reads the tables of the configuration (once) from the table directory,
    // generating them there or in the per-user cache when missing, and builds
    // every component. Throws UserError naming a missing or malformed table.
    static Model build(const ModelSetup& setup, const std::filesystem::path& tableDirectory, LogBook& log);
    // From tables already in memory (tests, generated configurations).
    static Model fromTables(const ModelSetup& setup, EngineTables tables, const CorrelationTermTensors& correlation = {});

    // No file access; allocates only what the result holds and what the
    // workspace needs on its first use.
    ModelSolution solve(const ParameterVector& parameters, const SolveRequest& request,
                        ModelWorkspace& workspace) const;

    const ModelSetup& setup() const { return setup_; }
    bool conjugate() const { return conjugate_; }
    int tableElectrons() const { return tables_->electrons; }
    const EngineTables& tables() const { return *tables_; }
    const FreeIonOperators& freeIonOperators() const { return *freeIon_; }
    const std::vector<ModelBlock>& blocks() const { return blocks_; }
    // Term tables of the correlation crystal-field operators in use.
    const CorrelationTermTensors& correlation() const { return correlation_; }
    // Parameters the model has an operator for (free-ion ids, then crystal-field ids).
    std::vector<ParameterId> parameterIds() const;
    // The value the model applies for a parameter of the actual configuration:
    // sign of the route (conjugate shell) times the parameter.
    double routeSign(ParameterId id) const;

    // dH/dp applied to vectors of block b (columns over the block's states; a
    // time-reversal partner block has no components: use its source block).
    // For complex vectors x + i y the result is re + i im.
    Eigen::MatrixXd applyParameterOperator(std::size_t b, ParameterId id, const Eigen::MatrixXd& x) const;
    void applyParameterOperator(std::size_t b, ParameterId id, const Eigen::MatrixXd& x, const Eigen::MatrixXd& y,
                                Eigen::MatrixXd& re, Eigen::MatrixXd& im) const;

    // Free-ion Hamiltonian per J block for the given parameters.
    std::vector<Eigen::MatrixXd> freeIonMatrices(const ParameterVector& parameters) const;
    // The matrix of a block for the given parameters (real part; the complex
    // model adds i times `imaginaryBlockMatrix`).
    Eigen::MatrixXd blockMatrix(std::size_t b, const ParameterVector& parameters) const;
    Eigen::MatrixXd imaginaryBlockMatrix(std::size_t b, const ParameterVector& parameters) const;

private:
    struct Patch {  // a square patch of the free-ion Hamiltonian in a block: one (MJ, J block)
        int jBlock = 0;
        int offset = 0;  // first state of the patch in the block
        int size = 0;
    };
    using SparsePart = Eigen::SparseMatrix<double, Eigen::RowMajor>;
    struct CrystalFieldComponent {
        CrystalFieldKey key;
        std::shared_ptr<const Eigen::MatrixXd> reducedInJ;  // the key's tensor between |SL J> states
        ParameterId reId = 0, imId = 0;
        double sign = 1.0;  // the route's sign
        std::vector<SparsePart> real, imaginary;  // per block; empty for a time-reversal partner
    };

    ModelSetup setup_;
    bool conjugate_ = false;
    std::shared_ptr<const EngineTables> tables_;
    std::shared_ptr<const FreeIonOperators> freeIon_;
    std::vector<ParameterId> freeIonIds_;  // per freeIon_->components entry
    std::vector<double> freeIonSigns_;
    std::vector<ModelBlock> blocks_;
    std::vector<std::vector<Patch>> patches_;  // per block
    std::vector<CrystalFieldComponent> crystalField_;
    CorrelationTermTensors correlation_;

    void buildCrystalField(const CorrelationTermTensors& correlation);
    SparsePart componentPart(std::size_t b, const CrystalFieldComponent& component, bool imaginary) const;
    void fillFreeIonMatrices(const ParameterVector& parameters, std::vector<Eigen::MatrixXd>& out) const;
    template <typename Scalar>
    void fillBlock(std::size_t b, const std::vector<Eigen::MatrixXd>& freeIon, const ParameterVector& parameters,
                   Eigen::Map<Eigen::Matrix<Scalar, Eigen::Dynamic, Eigen::Dynamic>> matrix) const;
    // dE/dp of solved (not partner) levels, rows as `levels`, columns as `ids`.
    Eigen::MatrixXd levelDerivatives(const std::vector<const ModelLevel*>& levels,
                                     const std::vector<ParameterId>& ids) const;
};

// Reusable storage of one thread's solves.
class ModelWorkspace {
public:
    ModelWorkspace() = default;

private:
    friend class Model;
    SymmetricEigenWorkspace real;
    HermitianEigenWorkspace complex;
    std::vector<Eigen::MatrixXd> freeIon;
};

}  // namespace orvane
