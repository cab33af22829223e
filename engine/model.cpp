#include "engine/model.hpp"

#include <algorithm>
#include <complex>
#include <map>
#include <stdexcept>
#include <string>
#include <utility>

#include <fmt/format.h>

#include "core/user_error.hpp"
#include "engine/correlation_crystal_field.hpp"
#include "engine/crystal_field_parameters.hpp"
#include "engine/engine_errors.hpp"

namespace orvane {

namespace {

using Complex = std::complex<double>;

bool usesConjugate(const ModelSetup& setup) { return setup.electrons > 7 && setup.electrons < 14 && !setup.actualShell; }

double phaseOfTwice(int twiceExponent) { return ((twiceExponent / 2) % 2 == 0) ? 1.0 : -1.0; }

// The states of every residue block ordered by MJ, J block, place in the J block.
std::vector<ModelBlock> modelBlocks(const JBasis& basis, int fold, int electrons) {
    std::map<int, std::vector<ModelState>> byResidue;
    int maxTwiceJ = 0;
    for (const auto& block : basis.blocks) maxTwiceJ = std::max(maxTwiceJ, block.twiceJ);
    for (int twiceM = -maxTwiceJ; twiceM <= maxTwiceJ; twiceM += 2)
        for (const auto& block : basis.blocks) {
            if (block.twiceJ < std::abs(twiceM) || (block.twiceJ - twiceM) % 2 != 0) continue;
            for (const int s : block.states) byResidue[twiceMResidue(twiceM, fold)].push_back({s, block.twiceJ, twiceM});
        }
    std::vector<ModelBlock> blocks;
    for (auto& [residue, states] : byResidue) blocks.push_back({residue, std::move(states), -1});
    // Time-reversal partners: residue r and -r mod 2p (odd n: T^2 = -1, even n: T^2 = +1).
    (void)electrons;
    for (std::size_t b = 0; b < blocks.size(); ++b) {
        const int partnerResidue = (2 * fold - blocks[b].residue) % (2 * fold);
        for (std::size_t other = 0; other < b; ++other)
            if (blocks[other].residue == partnerResidue && partnerResidue != blocks[b].residue)
                blocks[b].partner = static_cast<int>(other);
    }
    return blocks;
}

// For each state of block `to`, the state (s, J, -M) of block `from` and the phase (-1)^(J+M).
struct TimeReversal {
    std::vector<Eigen::Index> source;
    std::vector<double> phase;
};

TimeReversal timeReversal(const ModelBlock& from, const ModelBlock& to) {
    std::map<std::pair<int, int>, Eigen::Index> indexOf;
    for (std::size_t i = 0; i < from.states.size(); ++i)
        indexOf[{from.states[i].jState, from.states[i].twiceM}] = static_cast<Eigen::Index>(i);
    TimeReversal map;
    for (const auto& state : to.states) {
        map.source.push_back(indexOf.at({state.jState, -state.twiceM}));
        map.phase.push_back(phaseOfTwice(state.twiceJ + state.twiceM));
    }
    return map;
}

// The phase convention of the crystal-field vectors: the component of largest
// magnitude (the first of equal ones) is real and positive, so that listings
// do not depend on the LAPACK driver.
template <typename Vector>
void fixPhase(Vector& vector) {
    Eigen::Index largest = 0;
    double magnitude = -1.0;
    for (Eigen::Index i = 0; i < vector.size(); ++i)
        if (std::abs(vector(i)) > magnitude + 1e-12) {
            magnitude = std::abs(vector(i));
            largest = i;
        }
    if (magnitude <= 0.0) return;
    if constexpr (std::is_same_v<typename Vector::Scalar, Complex>)
        vector *= std::conj(vector(largest)) / magnitude;
    else if (vector(largest) < 0.0)
        vector = -vector;
}

template <typename Vector>
Vector timeReversed(const TimeReversal& map, const Vector& vector) {
    Vector result(static_cast<Eigen::Index>(map.source.size()));
    for (std::size_t i = 0; i < map.source.size(); ++i) {
        if constexpr (std::is_same_v<typename Vector::Scalar, Complex>)
            result(static_cast<Eigen::Index>(i)) = map.phase[i] * std::conj(vector(map.source[i]));
        else
            result(static_cast<Eigen::Index>(i)) = map.phase[i] * vector(map.source[i]);
    }
    return result;
}

}  // namespace

ModelSetup modelSetupOf(const ParameterSet& set, bool crystalField, bool complex) {
    ModelSetup setup;
    setup.electrons = set.electronCount;
    setup.fold = set.fold;
    setup.crystalField = crystalField;
    setup.complex = complex;
    setup.actualShell = set.switches.actualShell;
    setup.minMultiplicity = set.switches.minSpinMultiplicity;
    if (set.switches.noSpinSpin)
        setup.spinSpin = SpinSpinForm::Dropped;
    else if (set.switches.wrongRankSpinSpin)
        setup.spinSpin = SpinSpinForm::WrongRank1;
    setup.magneticFiles = set.switches.useZic ? MagneticTableFiles::ZForm : MagneticTableFiles::Operators;
    if (crystalField) setup.keys = crystalFieldParametersOf(set, false, complex).keys;
    return setup;
}

Model Model::build(const ModelSetup& setup, const std::filesystem::path& tableDirectory, LogBook& log) {
    if (setup.electrons < 1 || setup.electrons > 14)
        throw UserError(kRealEngineError,
                        fmt::format("invalid number of f electrons: {} (1 to 14)", setup.electrons));
    const int tableElectrons = usesConjugate(setup) ? 14 - setup.electrons : setup.electrons;
    auto tables = loadEngineTables(tableElectrons, tableDirectory, log, setup.magneticFiles);
    CorrelationTermTensors correlation;
    if (setup.crystalField)
        correlation = loadCorrelationTermTensors(setup.keys, tables, setup.electrons, tableDirectory, log);
    return fromTables(setup, std::move(tables), correlation);
}

Model Model::fromTables(const ModelSetup& setup, EngineTables tables, const CorrelationTermTensors& correlation) {
    if (setup.fold < 1) throw UserError(kRealEngineError, fmt::format("invalid fold of symmetry: {}", setup.fold));
    if (!keysFitFold(setup.keys, setup.fold))
        throw UserError(kCfHamiltonianError, "a crystal-field parameter has q not a multiple of the fold");
    Model model;
    model.setup_ = setup;
    model.conjugate_ = usesConjugate(setup);
    FreeIonBuildOptions options;
    options.minMultiplicity = setup.minMultiplicity;
    options.electrons = setup.electrons;
    options.spinSpin = setup.spinSpin;
    auto freeIon = buildFreeIonOperators(tables, options);
    if (freeIon.basis.states.empty()) throw UserError(kRealEngineError, "no |SLJ> state is left in the basis");
    for (const auto& component : freeIon.components) {
        const auto id = parameterIdOf(component.name);
        model.freeIonIds_.push_back(*id);
        model.freeIonSigns_.push_back(model.conjugate_ && changesSignInConjugateShell(*id) ? -1.0 : 1.0);
    }
    model.tables_ = std::make_shared<const EngineTables>(std::move(tables));
    model.freeIon_ = std::make_shared<const FreeIonOperators>(std::move(freeIon));
    model.correlation_ = correlation;
    if (setup.crystalField) model.buildCrystalField(correlation);
    return model;
}

void Model::buildCrystalField(const CorrelationTermTensors& correlation) {
    const auto& basis = freeIon_->basis;
    blocks_ = modelBlocks(basis, setup_.fold, setup_.electrons);
    std::vector<int> jBlockOf(basis.states.size()), placeInJBlock(basis.states.size());
    for (int jb = 0; jb < static_cast<int>(basis.blocks.size()); ++jb)
        for (int i = 0; i < static_cast<int>(basis.blocks[jb].states.size()); ++i) {
            jBlockOf[basis.blocks[jb].states[i]] = jb;
            placeInJBlock[basis.blocks[jb].states[i]] = i;
        }
    for (const auto& block : blocks_) {
        std::vector<Patch> patches;
        for (int i = 0; i < static_cast<int>(block.states.size()); ++i)
            if (placeInJBlock[block.states[i].jState] == 0) {
                const int jb = jBlockOf[block.states[i].jState];
                patches.push_back({jb, i, static_cast<int>(basis.blocks[jb].states.size())});
            }
        patches_.push_back(std::move(patches));
    }
    std::map<std::pair<CrystalFieldOperator, int>, std::shared_ptr<const Eigen::MatrixXd>> inJ;  // per operator and rank
    for (const auto& key : setup_.keys) {
        auto& reduced = inJ[{key.op, key.k}];
        if (!reduced) {
            const int kIndex = key.k / 2 - 1;
            const auto& termTable = key.op == CrystalFieldOperator::Standard ? tables_->unitTensor[kIndex]
                                                                             : correlation.at(key.op)[kIndex];
            reduced = std::make_shared<const Eigen::MatrixXd>(tensorBetweenJStates(*tables_, basis, termTable, key.k));
        }
        CrystalFieldComponent component;
        component.key = key;
        component.reducedInJ = reduced;
        component.reId = crystalFieldParameterId(key.op, key.k, key.q, false);
        component.imId = crystalFieldParameterId(key.op, key.k, key.q, true);
        component.sign = routeSign(component.reId);
        // A time-reversal partner block is never diagonalised: its parts are
        // built only when asked for (componentPart).
        for (std::size_t b = 0; b < blocks_.size(); ++b) {
            const bool solved = blocks_[b].partner < 0;
            component.real.push_back(solved ? componentPart(b, component, false) : SparsePart{});
            if (setup_.complex && key.q > 0)
                component.imaginary.push_back(solved ? componentPart(b, component, true) : SparsePart{});
        }
        crystalField_.push_back(std::move(component));
    }
}

Model::SparsePart Model::componentPart(std::size_t b, const CrystalFieldComponent& component, bool imaginary) const {
    const auto& block = blocks_[b];
    ResidueBlock residueForm{block.residue, {}};
    for (const auto& state : block.states) residueForm.states.push_back({state.jState, state.twiceJ, state.twiceM});
    return crystalFieldBlockComponent(residueForm, *component.reducedInJ, component.key, imaginary ? -1.0 : 1.0);
}

std::vector<ParameterId> Model::parameterIds() const {
    std::vector<ParameterId> ids = freeIonIds_;
    for (const auto& component : crystalField_) {
        ids.push_back(component.reId);
        if (!component.imaginary.empty()) ids.push_back(component.imId);
    }
    return ids;
}

double Model::routeSign(ParameterId id) const {
    return conjugate_ && changesSignInConjugateShell(id) ? -1.0 : 1.0;
}

void Model::fillFreeIonMatrices(const ParameterVector& parameters, std::vector<Eigen::MatrixXd>& out) const {
    const auto& basis = freeIon_->basis;
    out.resize(basis.blocks.size());
    for (std::size_t b = 0; b < basis.blocks.size(); ++b) {
        const auto size = static_cast<Eigen::Index>(basis.blocks[b].states.size());
        out[b].setZero(size, size);
    }
    for (std::size_t c = 0; c < freeIon_->components.size(); ++c) {
        const double weight = freeIonSigns_[c] * parameters.value(freeIonIds_[c]);
        if (weight == 0.0) continue;
        const auto& component = freeIon_->components[c];
        for (std::size_t b = 0; b < out.size(); ++b) out[b].noalias() += weight * component.blocks[b];
    }
}

std::vector<Eigen::MatrixXd> Model::freeIonMatrices(const ParameterVector& parameters) const {
    std::vector<Eigen::MatrixXd> matrices;
    fillFreeIonMatrices(parameters, matrices);
    return matrices;
}

template <typename Scalar>
void Model::fillBlock(std::size_t b, const std::vector<Eigen::MatrixXd>& freeIon, const ParameterVector& parameters,
                      Eigen::Map<Eigen::Matrix<Scalar, Eigen::Dynamic, Eigen::Dynamic>> matrix) const {
    matrix.setZero();
    for (const auto& patch : patches_[b])
        matrix.block(patch.offset, patch.offset, patch.size, patch.size) = freeIon[patch.jBlock].template cast<Scalar>();
    for (const auto& component : crystalField_) {
        const double re = component.sign * parameters.value(component.reId);
        if (re != 0.0) {
            const auto& part = component.real[b];
            for (Eigen::Index row = 0; row < part.outerSize(); ++row)
                for (typename std::decay_t<decltype(part)>::InnerIterator it(part, row); it; ++it)
                    matrix(row, it.col()) += re * it.value();
        }
        if constexpr (std::is_same_v<Scalar, Complex>) {
            if (component.imaginary.empty()) continue;
            const double im = component.sign * parameters.value(component.imId);
            if (im == 0.0) continue;
            const auto& part = component.imaginary[b];
            for (Eigen::Index row = 0; row < part.outerSize(); ++row)
                for (typename std::decay_t<decltype(part)>::InnerIterator it(part, row); it; ++it)
                    matrix(row, it.col()) += Complex(0.0, im * it.value());
        }
    }
}

// Built from the block's own components also for a time-reversal partner
// (whose parts the model does not keep), so that checks compare the mapped
// levels against an independent matrix.
Eigen::MatrixXd Model::blockMatrix(std::size_t b, const ParameterVector& parameters) const {
    const auto freeIon = freeIonMatrices(parameters);
    const auto n = static_cast<Eigen::Index>(blocks_[b].states.size());
    Eigen::MatrixXd matrix = Eigen::MatrixXd::Zero(n, n);
    for (const auto& patch : patches_[b])
        matrix.block(patch.offset, patch.offset, patch.size, patch.size) = freeIon[patch.jBlock];
    for (const auto& component : crystalField_) {
        const double re = component.sign * parameters.value(component.reId);
        if (re == 0.0) continue;
        matrix += re * Eigen::MatrixXd(blocks_[b].partner < 0 ? component.real[b] : componentPart(b, component, false));
    }
    return matrix;
}

Eigen::MatrixXd Model::imaginaryBlockMatrix(std::size_t b, const ParameterVector& parameters) const {
    const auto n = static_cast<Eigen::Index>(blocks_[b].states.size());
    Eigen::MatrixXd matrix = Eigen::MatrixXd::Zero(n, n);
    for (const auto& component : crystalField_) {
        const double im = component.sign * parameters.value(component.imId);
        if (component.imaginary.empty() || im == 0.0) continue;
        matrix += im * Eigen::MatrixXd(blocks_[b].partner < 0 ? component.imaginary[b] : componentPart(b, component, true));
    }
    return matrix;
}

Eigen::MatrixXd Model::applyParameterOperator(std::size_t b, ParameterId id, const Eigen::MatrixXd& x) const {
    Eigen::MatrixXd re, im;
    applyParameterOperator(b, id, x, Eigen::MatrixXd(), re, im);
    return re;
}

// dH/dp (x + i y): free-ion components act on the (MJ, J) patches; a
// crystal-field part A acts on both; an imaginary part i A gives -A y + i A x.
void Model::applyParameterOperator(std::size_t b, ParameterId id, const Eigen::MatrixXd& x, const Eigen::MatrixXd& y,
                                   Eigen::MatrixXd& re, Eigen::MatrixXd& im) const {
    const bool complex = y.size() > 0;
    re = Eigen::MatrixXd::Zero(x.rows(), x.cols());
    im = Eigen::MatrixXd::Zero(complex ? x.rows() : 0, complex ? x.cols() : 0);
    for (std::size_t c = 0; c < freeIonIds_.size(); ++c) {
        if (freeIonIds_[c] != id) continue;
        for (const auto& patch : patches_[b]) {
            const auto& block = freeIon_->components[c].blocks[patch.jBlock];
            re.middleRows(patch.offset, patch.size).noalias() += freeIonSigns_[c] * (block * x.middleRows(patch.offset, patch.size));
            if (complex)
                im.middleRows(patch.offset, patch.size).noalias() +=
                    freeIonSigns_[c] * (block * y.middleRows(patch.offset, patch.size));
        }
    }
    for (const auto& component : crystalField_) {
        if (component.reId == id) {
            re.noalias() += component.sign * (component.real[b] * x);
            if (complex) im.noalias() += component.sign * (component.real[b] * y);
        }
        if (component.imId == id && complex && !component.imaginary.empty()) {
            re.noalias() -= component.sign * (component.imaginary[b] * y);
            im.noalias() += component.sign * (component.imaginary[b] * x);
        }
    }
}

// dE/dp = <v| dH/dp |v> for the levels of one block at once: with v = x + i y
// (y = 0 for the real model) and dH/dp v = re + i im, <v|dH/dp|v> = x.re + y.im.
Eigen::MatrixXd Model::levelDerivatives(const std::vector<const ModelLevel*>& levels,
                                        const std::vector<ParameterId>& ids) const {
    Eigen::MatrixXd result = Eigen::MatrixXd::Zero(static_cast<Eigen::Index>(levels.size()),
                                                   static_cast<Eigen::Index>(ids.size()));
    std::map<int, std::vector<std::size_t>> byBlock;
    for (std::size_t i = 0; i < levels.size(); ++i) byBlock[levels[i]->block].push_back(i);
    for (const auto& [block, members] : byBlock) {
        const auto b = static_cast<std::size_t>(block);
        const auto n = static_cast<Eigen::Index>(blocks_[b].states.size());
        const auto m = static_cast<Eigen::Index>(members.size());
        const bool complex = levels[members[0]]->complexVector.size() > 0;
        Eigen::MatrixXd x(n, m), y(complex ? n : 0, complex ? m : 0), re, im;
        for (Eigen::Index j = 0; j < m; ++j) {
            const ModelLevel& level = *levels[members[static_cast<std::size_t>(j)]];
            if (complex) {
                x.col(j) = level.complexVector.real();
                y.col(j) = level.complexVector.imag();
            } else {
                x.col(j) = level.vector;
            }
        }
        for (std::size_t p = 0; p < ids.size(); ++p) {
            applyParameterOperator(b, ids[p], x, y, re, im);
            Eigen::RowVectorXd d = x.cwiseProduct(re).colwise().sum();
            if (complex) d += y.cwiseProduct(im).colwise().sum();
            for (Eigen::Index j = 0; j < m; ++j)
                result(static_cast<Eigen::Index>(members[static_cast<std::size_t>(j)]), static_cast<Eigen::Index>(p)) =
                    d(j);
        }
    }
    return result;
}

namespace {

void reportBlockSolved(const SolveRequest& request, std::size_t block, std::size_t blocks) {
    if (request.blockSolved) request.blockSolved(static_cast<int>(block) + 1, static_cast<int>(blocks));
}

// The levels whose derivatives are asked: the listed ones (each checked
// against the count), or all of them.
std::vector<std::size_t> derivativeRows(const std::vector<int>& listed, std::size_t count) {
    std::vector<std::size_t> rows;
    if (listed.empty()) {
        rows.resize(count);
        for (std::size_t i = 0; i < count; ++i) rows[i] = i;
        return rows;
    }
    rows.reserve(listed.size());
    for (int level : listed) {
        if (level < 0 || static_cast<std::size_t>(level) >= count)
            throw std::out_of_range("derivative asked for level " + std::to_string(level) + " of " +
                                    std::to_string(count));
        rows.push_back(static_cast<std::size_t>(level));
    }
    return rows;
}

}  // namespace

ModelSolution Model::solve(const ParameterVector& parameters, const SolveRequest& request,
                           ModelWorkspace& workspace) const {
    ModelSolution solution;
    fillFreeIonMatrices(parameters, workspace.freeIon);
    const bool freeIonOnly = !setup_.crystalField;
    if (request.freeIon || freeIonOnly) {
        for (std::size_t b = 0; b < workspace.freeIon.size(); ++b) {
            const auto n = static_cast<int>(workspace.freeIon[b].rows());
            workspace.real.matrix(n) = workspace.freeIon[b];
            // MRRR keeps the free-ion vectors' phases those of earlier releases.
            const auto status = workspace.real.solve({true, kAllEigenvalues, EigenDriver::Mrrr});
            if (status != EigenStatus::Ok) {
                solution.status = status;
                return solution;
            }
            for (int i = 0; i < workspace.real.count(); ++i)
                solution.freeIon.levels.push_back({static_cast<int>(b), freeIon_->basis.blocks[b].twiceJ,
                                                   workspace.real.values()(i), workspace.real.vectors().col(i)});
        }
        std::stable_sort(solution.freeIon.levels.begin(), solution.freeIon.levels.end(),
                         [](const FreeIonLevel& x, const FreeIonLevel& y) { return x.energy < y.energy; });
    }
    if (freeIonOnly) {
        if (!request.derivatives.empty()) {
            const auto rows = derivativeRows(request.derivativeLevels, solution.freeIon.levels.size());
            solution.derivatives.resize(static_cast<Eigen::Index>(rows.size()),
                                        static_cast<Eigen::Index>(request.derivatives.size()));
            for (std::size_t l = 0; l < rows.size(); ++l) {
                const auto& level = solution.freeIon.levels[rows[l]];
                for (std::size_t p = 0; p < request.derivatives.size(); ++p) {
                    double value = 0.0;
                    for (std::size_t c = 0; c < freeIonIds_.size(); ++c)
                        if (freeIonIds_[c] == request.derivatives[p])
                            value = freeIonSigns_[c] *
                                    level.vector.dot(freeIon_->components[c].blocks[level.block] * level.vector);
                    solution.derivatives(static_cast<Eigen::Index>(l), static_cast<Eigen::Index>(p)) = value;
                }
            }
        }
        return solution;
    }

    const bool vectors = request.vectors || !request.derivatives.empty();
    const EigenRequest eigen{vectors, request.lowest, EigenDriver::Automatic};
    std::vector<std::size_t> first(blocks_.size(), 0), count(blocks_.size(), 0);
    for (std::size_t b = 0; b < blocks_.size(); ++b) {
        first[b] = solution.levels.size();
        const int partner = blocks_[b].partner;
        if (partner >= 0) {
            count[b] = count[partner];
            const auto map = vectors ? timeReversal(blocks_[partner], blocks_[b]) : TimeReversal{};
            for (std::size_t i = 0; i < count[b]; ++i) {
                const ModelLevel& source = solution.levels[first[partner] + i];
                ModelLevel level{source.energy, static_cast<int>(b), {}, {}};
                if (source.vector.size() > 0) level.vector = timeReversed(map, source.vector);
                if (source.complexVector.size() > 0) level.complexVector = timeReversed(map, source.complexVector);
                solution.levels.push_back(std::move(level));
            }
            reportBlockSolved(request, b, blocks_.size());
            continue;
        }
        const int n = static_cast<int>(blocks_[b].states.size());
        auto collect = [&](auto& eigenWorkspace, auto assignVector) {
            const auto status = eigenWorkspace.solve(eigen);
            if (status != EigenStatus::Ok) return status;
            count[b] = static_cast<std::size_t>(eigenWorkspace.count());
            for (int i = 0; i < eigenWorkspace.count(); ++i) {
                ModelLevel level{eigenWorkspace.values()(i), static_cast<int>(b), {}, {}};
                if (vectors) assignVector(level, eigenWorkspace.vectors().col(i));
                solution.levels.push_back(std::move(level));
            }
            return status;
        };
        EigenStatus status;
        if (setup_.complex) {
            fillBlock<Complex>(b, workspace.freeIon, parameters, workspace.complex.matrix(n));
            status = collect(workspace.complex, [](ModelLevel& level, const auto& v) {
                level.complexVector = v;
                fixPhase(level.complexVector);
            });
        } else {
            fillBlock<double>(b, workspace.freeIon, parameters, workspace.real.matrix(n));
            status = collect(workspace.real, [](ModelLevel& level, const auto& v) {
                level.vector = v;
                fixPhase(level.vector);
            });
        }
        if (status != EigenStatus::Ok) {
            solution.status = status;
            solution.levels.clear();
            return solution;
        }
        reportBlockSolved(request, b, blocks_.size());
    }
    // Ascending energies; a partner block's level follows its source (lower block) on ties.
    std::vector<std::size_t> order(solution.levels.size());
    for (std::size_t i = 0; i < order.size(); ++i) order[i] = i;
    std::stable_sort(order.begin(), order.end(), [&](std::size_t x, std::size_t y) {
        return solution.levels[x].energy < solution.levels[y].energy;
    });
    std::size_t retained = order.size();
    if (request.lowest >= 0) retained = std::min(retained, static_cast<std::size_t>(request.lowest));
    if (!request.derivatives.empty()) {
        // A partner block's level is the time reverse of a solved one: every
        // component is even under time reversal, so its derivatives are those
        // of its source level (whose block keeps the components).
        std::vector<std::size_t> sourceOf(solution.levels.size());
        for (std::size_t b = 0; b < blocks_.size(); ++b)
            for (std::size_t i = 0; i < count[b]; ++i)
                sourceOf[first[b] + i] = blocks_[b].partner < 0 ? first[b] + i : first[blocks_[b].partner] + i;
        const auto rows = derivativeRows(request.derivativeLevels, retained);
        // Sorted positions whose derivatives enter each row: the row's level, or its degenerate group.
        std::vector<std::pair<std::size_t, std::size_t>> ranges;
        for (const std::size_t r : rows) {
            std::size_t lo = r, hi = r + 1;
            if (request.averageDegenerateLevels) {
                auto energyAt = [&](std::size_t k) { return solution.levels[order[k]].energy; };
                while (lo > 0 && degenerateEnergies(energyAt(lo - 1), energyAt(lo))) --lo;
                while (hi < order.size() && degenerateEnergies(energyAt(hi - 1), energyAt(hi))) ++hi;
            }
            ranges.emplace_back(lo, hi);
        }
        std::map<std::size_t, std::size_t> column;  // source level -> its index in `sources`
        std::vector<const ModelLevel*> sources;
        for (const auto& [lo, hi] : ranges)
            for (std::size_t k = lo; k < hi; ++k)
                if (column.emplace(sourceOf[order[k]], sources.size()).second)
                    sources.push_back(&solution.levels[sourceOf[order[k]]]);
        const Eigen::MatrixXd bySource = levelDerivatives(sources, request.derivatives);
        solution.derivatives.resize(static_cast<Eigen::Index>(rows.size()),
                                    static_cast<Eigen::Index>(request.derivatives.size()));
        for (std::size_t r = 0; r < rows.size(); ++r) {
            const auto [lo, hi] = ranges[r];
            Eigen::RowVectorXd sum = Eigen::RowVectorXd::Zero(bySource.cols());
            for (std::size_t k = lo; k < hi; ++k)
                sum += bySource.row(static_cast<Eigen::Index>(column[sourceOf[order[k]]]));
            solution.derivatives.row(static_cast<Eigen::Index>(r)) = sum / static_cast<double>(hi - lo);
        }
    }
    std::vector<ModelLevel> sorted;
    sorted.reserve(retained);
    for (std::size_t r = 0; r < retained; ++r) {
        sorted.push_back(std::move(solution.levels[order[r]]));
        if (!request.vectors) {
            sorted.back().vector.resize(0);
            sorted.back().complexVector.resize(0);
        }
    }
    solution.levels = std::move(sorted);
    return solution;
}

}  // namespace orvane
