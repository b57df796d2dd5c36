// What the inversion keeps between runs: the table of free parameters with its limits and steps,
// the map from table rows back to bodies, the start and best vectors, the residual vectors, the
// misfit weight and the session's flags. A workspace owns one; tests build their own.
//
//   inversion_state state;
//   int count = 0;
//   collect_all_parameters(model, state, false, inversion_mode_magnetics, count);
#pragma once

#include <cstdint>

#include "core/parameter.h"
#include "inversion/fit_summary.h"
#include "support/bounded_array.h"

namespace trensil {

// Data types an inversion can fit, the list index of Combo_invert.
inline constexpr int inversion_mode_magnetics = 0;
inline constexpr int inversion_mode_gravity = 1;
// Both data types at once: the free properties of magnetics and of gravity (joint fits).
inline constexpr int inversion_mode_joint = 2;

// The two solvers: the coordinate descent (the default) and the bounded damped least squares.
enum class inversion_solver : int { coordinate_descent = 0, damped_least_squares = 1 };

// The choices of the damped least-squares solver. A noise level of 0 is taken from the data's
// own scatter.
struct least_squares_options {
    bool joint = false;       // magnetics and gravity in one fit
    bool robust = false;      // Huber loss: a few spikes do not drag the fit
    float noise_mag = 0.0f;   // nT (nT/m when the gradient is fitted)
    float noise_grav = 0.0f;  // mGal (mGal/m when the gradient is fitted)
};

// What a misfit was measured on: one data type, or both with the given noise levels (0: from
// the data). Best misfits of different measures cannot be compared.
struct joint_measure {
    bool joint = false;
    float noise_mag = 0.0f;
    float noise_grav = 0.0f;
    bool operator==(const joint_measure&) const = default;
};

// Columns of inversion_parameters.
enum inversion_column : int {
    column_value = 1,
    column_min = 2,
    column_max = 3,
    column_step = 4,
};

// Columns of parameter_map.
enum parameter_map_column : int { map_body = 1, map_property_row = 2 };

struct inversion_state {
    // The parameter vector: rows 1..inversion_parameter_count.
    std::int32_t inversion_parameter_count = 0;
    array2<float> inversion_parameters;  // value, min, max, step
    array2<std::int32_t> parameter_map;  // body index, property row
    array1<float> start_parameters;      // the values the last run began with
    array1<float> best_parameters;       // the values of the best model seen

    // The solver: misfit weight of the run, residuals over the inversion range 1..N.
    float misfit_weight = 1.0f;
    std::int32_t inversion_count = 0;
    array1<float> current_residual;
    array1<float> trial_residual;

    // The solver a run uses, the least-squares solver's choices, and what its last run found
    // out about the parameters (empty after a coordinate descent).
    inversion_solver solver = inversion_solver::coordinate_descent;
    least_squares_options least_squares;
    fit_summary fit;

    // The session.
    float best_misfit = undefined_value;  // -99999: none
    joint_measure best_measure;           // what best_misfit was measured on
    bool have_best_model = false;
    bool stop_requested = false;

    // What the last run did, for the callers that report it (the batch tool, the tests).
    int iterations_done = 0;
    bool stalled = false;  // the last run ended by the one-per-cent rule
    long misfit_evaluations = 0;
};

}  // namespace trensil
