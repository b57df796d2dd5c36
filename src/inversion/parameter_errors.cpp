// Standard errors and correlations of the fitted parameters, from the final Jacobian by a
// singular value decomposition (Eigen), so that a rank-deficient fit names the parameters it
// cannot determine instead of reporting huge numbers for them. A robust fit uses Huber's
// estimate: the scatter of the clipped residuals, the information of the data within the
// threshold.
#include <Eigen/Dense>
#include <algorithm>
#include <cmath>

#include "inversion/fit_summary.h"

namespace trensil {

namespace {

// A singular value below this fraction of the largest marks a combination the data do not fix.
constexpr double singular_cut = 1e-6;
// A parameter whose weight in the undetermined combinations reaches this is undetermined.
constexpr double undetermined_share = 0.01;
constexpr std::size_t correlations_kept = 3;

}  // namespace

void estimate_parameter_errors(const std::vector<double>& jacobian,
                               const std::vector<double>& residual, int data_count,
                               int parameter_count, const std::vector<bool>& at_limit,
                               double huber_threshold, fit_summary& summary) {
    const int m = data_count;
    summary.errors.assign(static_cast<std::size_t>(parameter_count), parameter_error{});
    summary.strongest.clear();
    summary.data_count = m;

    std::vector<int> free;  // columns of the Jacobian that take part
    for (int j = 0; j < parameter_count; ++j) {
        if (at_limit[static_cast<std::size_t>(j)]) {
            summary.errors[static_cast<std::size_t>(j)].state = error_state::at_limit;
        } else {
            free.push_back(j);
        }
    }
    const int q = static_cast<int>(free.size());

    // With the Huber loss a datum beyond the threshold adds only the threshold squared to the
    // scatter and nothing to the information (psi = r clipped to +-threshold, psi' = 0 there).
    Eigen::VectorXd row_weight = Eigen::VectorXd::Ones(m);
    double scatter = 0.0;
    for (int i = 0; i < m; ++i) {
        double r = residual[static_cast<std::size_t>(i)];
        if (huber_threshold > 0.0 && std::fabs(r) > huber_threshold) {
            r = huber_threshold;
            row_weight(i) = 0.0;
        }
        scatter += r * r;
    }
    const int dof = m - q;
    summary.normalised_misfit = dof > 0 ? static_cast<float>(std::sqrt(scatter / dof)) : 0.0f;
    if (q == 0 || dof <= 0) return;
    const double s2 = scatter / dof;

    // Columns scaled to unit length, so that parameters of different units (metres, degrees,
    // millionths SI) count alike when a combination is judged undetermined.
    Eigen::MatrixXd a(m, q);
    Eigen::VectorXd scale(q);
    for (int c = 0; c < q; ++c) {
        const double* column = jacobian.data() + static_cast<std::size_t>(free[c]) * m;
        for (int i = 0; i < m; ++i) a(i, c) = row_weight(i) * column[i];
        const double length = a.col(c).norm();
        scale(c) = length > 0.0 ? 1.0 / length : 1.0;
        a.col(c) *= scale(c);
    }
    const Eigen::JacobiSVD<Eigen::MatrixXd> svd(a, Eigen::ComputeThinV);
    const Eigen::VectorXd& s = svd.singularValues();
    const Eigen::MatrixXd& v = svd.matrixV();
    const double largest = s.size() > 0 ? s(0) : 0.0;

    // (A'A)^+ = V S^-2 V' over the determined combinations; the rest mark their parameters.
    Eigen::MatrixXd covariance = Eigen::MatrixXd::Zero(q, q);
    std::vector<bool> undetermined(static_cast<std::size_t>(q), false);
    for (int k = 0; k < q; ++k) {
        if (largest > 0.0 && s(k) > singular_cut * largest) {
            covariance += (s2 / (s(k) * s(k))) * v.col(k) * v.col(k).transpose();
        } else {
            for (int c = 0; c < q; ++c)
                if (v(c, k) * v(c, k) >= undetermined_share)
                    undetermined[static_cast<std::size_t>(c)] = true;
        }
    }
    covariance = scale.asDiagonal() * covariance * scale.asDiagonal();

    for (int c = 0; c < q; ++c) {
        parameter_error& e = summary.errors[static_cast<std::size_t>(free[c])];
        if (undetermined[static_cast<std::size_t>(c)]) continue;  // stays undetermined
        e.state = error_state::estimated;
        e.standard_error = static_cast<float>(std::sqrt(std::max(0.0, covariance(c, c))));
    }

    std::vector<parameter_correlation> pairs;
    for (int c1 = 0; c1 < q; ++c1) {
        for (int c2 = c1 + 1; c2 < q; ++c2) {
            if (undetermined[static_cast<std::size_t>(c1)] ||
                undetermined[static_cast<std::size_t>(c2)])
                continue;
            const double scale = std::sqrt(covariance(c1, c1) * covariance(c2, c2));
            if (!(scale > 0.0)) continue;
            pairs.push_back(
                {free[c1] + 1, free[c2] + 1, static_cast<float>(covariance(c1, c2) / scale)});
        }
    }
    std::stable_sort(pairs.begin(), pairs.end(),
                     [](const parameter_correlation& x, const parameter_correlation& y) {
                         return std::fabs(x.value) > std::fabs(y.value);
                     });
    if (pairs.size() > correlations_kept) pairs.resize(correlations_kept);
    summary.strongest = pairs;
}

}  // namespace trensil
