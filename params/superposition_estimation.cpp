#include "params/superposition_estimation.hpp"

#include <cmath>
#include <cstdlib>

#include <Eigen/Dense>

#include "core/number_format.hpp"
#include "core/text.hpp"
#include "core/user_error.hpp"
#include "params/value_cell.hpp"

namespace orvane::params {

namespace {

const char* kEstimationTitle = "Error in SM estimation";

struct Observation {
    int rank = 0;  // index 0..2 of k = 2, 4, 6
    double given = 0.0;
    double model = 0.0;  // G: the B(k,q) part for b_k = 1
};

}  // namespace

// Linear least squares for b_k at fixed t_k (Newman & Ng 1989, section 1.4), solved by
// column-pivoted Householder QR.
SuperpositionEstimate estimateIntrinsicParameters(const std::vector<Ligand>& ligands,
                                       const SuperpositionParameters& fixed, const CfTable& bkq) {
    if (ligands.empty())
        throw UserError(kEstimationTitle,
                        "Need to fill in ligand positions before estimation of SM parameters!");
    if (fixed.r0 == 0.0)
        throw UserError(kEstimationTitle,
                        "Need to provide Reference Distance before estimation of SM parameters!");
    bool anyValue = false;
    for (const CfRow& row : bkq.rows)
        if ((row.k == 2 || row.k == 4 || row.k == 6) &&
            (cellNumber(row.re) != 0.0 ||
             (bkq.complexMode && cellNumber(row.im) != 0.0)))
            anyValue = true;
    if (!anyValue)
        throw UserError(kEstimationTitle, "Need to provide CFP values in the Input Form before "
                                          "estimation of SM parameters!");

    SuperpositionParameters unit = fixed;
    unit.bk = {1.0, 1.0, 1.0};
    const SuperpositionDerivatives g = superpositionDerivatives(ligands, unit);
    std::vector<Observation> observations;
    for (const CfRow& row : bkq.rows) {
        if (row.k != 2 && row.k != 4 && row.k != 6) continue;
        const int aq = std::abs(row.q);
        if (aq > row.k) continue;
        const int rank = row.k / 2 - 1;
        // A row with negative q is the hermitian partner: B(k,-q) = (-1)^q B(k,q)*.
        const double sign = row.q < 0 && aq % 2 == 1 ? -1.0 : 1.0;
        const double imSign = row.q < 0 ? -sign : 1.0;
        observations.push_back(
            {rank, cellNumber(row.re), sign * g.byBk[row.k][aq].real()});
        if (bkq.complexMode && aq > 0)
            observations.push_back(
                {rank, cellNumber(row.im), imSign * g.byBk[row.k][aq].imag()});
    }
    // A rank is determined only when the geometry gives it a coordination sum that is
    // not zero by symmetry (rank 2 of a cube is zero up to rounding): compare with the
    // sum of the distance factors, the largest value a coordination sum can reach.
    std::array<double, 3> scale{};
    for (const Ligand& l : ligands)
        for (int rank = 0; rank < 3; ++rank) scale[rank] += std::pow(fixed.r0 / l.r, fixed.tk[rank]);
    std::array<int, 3> column{-1, -1, -1};
    int columns = 0;
    for (int rank = 0; rank < 3; ++rank) {
        bool informative = false;
        for (const Observation& o : observations)
            if (o.rank == rank && std::fabs(o.model) > 1e-9 * scale[rank]) informative = true;
        if (informative) column[rank] = columns++;
    }
    SuperpositionEstimate estimate;
    estimate.observations = static_cast<int>(observations.size());
    if (columns == 0) return estimate;
    Eigen::MatrixXd design = Eigen::MatrixXd::Zero(static_cast<Eigen::Index>(observations.size()), columns);
    Eigen::VectorXd given(static_cast<Eigen::Index>(observations.size()));
    for (std::size_t i = 0; i < observations.size(); ++i) {
        const Observation& o = observations[i];
        given(static_cast<Eigen::Index>(i)) = o.given;
        if (column[o.rank] >= 0) design(static_cast<Eigen::Index>(i), column[o.rank]) = o.model;
    }
    const Eigen::VectorXd b = design.colPivHouseholderQr().solve(given);
    for (int rank = 0; rank < 3; ++rank)
        if (column[rank] >= 0) estimate.bk[rank] = b(column[rank]);
    const Eigen::VectorXd residual = design * b - given;
    estimate.rmsDeviation = std::sqrt(residual.squaredNorm() / static_cast<double>(given.size()));
    return estimate;
}

std::vector<std::string> estimateLines(const SuperpositionEstimate& e) {
    std::vector<std::string> lines;
    lines.push_back("Estimated intrinsic parameters of the superposition model:");
    for (int rank = 0; rank < 3; ++rank) {
        const std::string name = "b" + std::to_string(2 * (rank + 1)) + " = ";
        lines.push_back(e.bk[rank] ? name + formatNumber(*e.bk[rank], "####0.000")
                                   : name + "(not determined: no parameter of this rank given, or "
                                            "the ligands give this rank no field)");
    }
    lines.push_back("Rms deviation of the Bkq = " + formatNumber(e.rmsDeviation, "####0.000") +
                    " from " + std::to_string(e.observations) + " values");
    return lines;
}

}  // namespace orvane::params
