// What a damped least-squares run found out about its parameters: each free parameter's standard
// error from the final Jacobian and the residual scatter, the strongest correlations between
// parameters, the normalised misfit and the noise levels the data were weighted by.
//
//   estimate_parameter_errors(jacobian, residual, data_count, parameter_count, at_limit, 0.0,
//                             state.fit);
//   if (state.fit.errors[k - 1].state == error_state::estimated) ... state.fit.errors[k - 1]
#pragma once

#include <string>
#include <vector>

namespace trensil {

// How well the data determine one parameter.
enum class error_state : int {
    estimated,     // standard_error holds its standard error
    at_limit,      // it ended at one of its limits: held there, no error estimated
    undetermined,  // the data do not constrain it (no influence, or a perfect trade-off)
};

struct parameter_error {
    float standard_error = 0.0f;  // in the parameter's own units
    error_state state = error_state::undetermined;
};

// The correlation coefficient of two parameters, named by their table rows (1..).
struct parameter_correlation {
    int first = 0;
    int second = 0;
    float value = 0.0f;
};

struct fit_summary {
    bool available = false;                        // set by a damped least-squares run
    std::vector<parameter_error> errors;           // index k - 1 for table row k
    std::vector<parameter_correlation> strongest;  // by falling |value|, at most three
    // Root of the weighted sum of squares over (data - free parameters), residuals clipped at
    // the Huber threshold in a robust fit: about 1 when the fit reaches the noise level.
    float normalised_misfit = 0.0f;
    int data_count = 0;
    float noise_mag = 0.0f;   // the magnetic noise level the data were weighted by; 0 not fitted
    float noise_grav = 0.0f;  // the same for gravity
    std::string stop_reason;  // why the run ended, in words
};

// Standard errors and correlations from the weighted Jacobian `jacobian` (data_count rows by
// parameter_count columns, column after column) and weighted residuals `residual` at the end of
// a fit. Parameters marked in `at_limit` are held fixed. The covariance is s^2 (J'J)^-1 with
// s^2 = sum of r^2 over (data - free parameters). With huber_threshold above 0 a residual
// beyond the threshold counts as the threshold in s^2 and its row leaves J'J. Combinations the
// data do not determine (singular values below 1e-6 of the largest) leave their parameters
// undetermined.
void estimate_parameter_errors(const std::vector<double>& jacobian,
                               const std::vector<double>& residual, int data_count,
                               int parameter_count, const std::vector<bool>& at_limit,
                               double huber_threshold, fit_summary& summary);

}  // namespace trensil
