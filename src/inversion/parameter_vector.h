// The free parameters of an inversion as one flat table: which body properties may move for the
// chosen data type, their limits and step sizes, and the writing of table values back into the
// bodies with exactly the response invalidation each property needs.
//
//   int count = 0;
//   collect_all_parameters(model, state, false, inversion_mode_gravity, count);  // count only
//   ... dimension the table for count rows ...
//   collect_all_parameters(model, state, true, inversion_mode_gravity, count);   // fill it
//   float proximity = 0;
//   apply_parameter(model, state, 3, proximity);
#pragma once

#include "core/body_catalogue.h"
#include "core/model_record.h"
#include "inversion/inversion_state.h"

namespace trensil {

// The property of `body` that a table row stands for; null for a number that is no property row.
parameter* property_by_row(body_record& body, int row);
const parameter* property_by_row(const body_record& body, int row);

// The body table's label of a property row ("Distance", "Depth Ext", "Rem Q" ...); "" for none.
const char* property_label(int row);

// Which of a body's cached results a change of property `row` makes stale: the magnetic rows
// (every property but density), the gravity row (the geometry and density), the field
// coefficients (the angles, susceptibility and remanence).
bool parameter_moves_magnetics(int row);
bool parameter_moves_gravity(int row);
bool parameter_moves_magnetisation(int row);

// The fixed step size of a property row for its current value.
float parameter_step(int row, float value);

// With fill false: count := the number of free properties of body `body_index` for data type
// `mode` (inversion_mode_joint takes those of both data types). With fill true:
// writes a table row and a map row for each of them after the running `count` (rows count + 1
// onward) and advances count. The table must already hold enough rows.
void collect_body_parameters(const model_record& model, inversion_state& state, bool fill, int mode,
                             int body_index, int& count);

// The same over bodies 1..num_bodies in index order, with one running count from 0.
void collect_all_parameters(const model_record& model, inversion_state& state, bool fill, int mode,
                            int& count);

// Dimensions the table, the map, start_parameters and best_parameters for `count` rows.
void dimension_parameter_table(inversion_state& state, int count);

// Writes table row k into its body. A body property that already holds the table value is left
// alone, so its response stays valid; otherwise the body's stale flags are set as the property
// needs and `proximity` takes the running maximum of the closeness measure.
void apply_parameter(model_record& model, const inversion_state& state, int k, float& proximity);

// proximity := 0, then apply_parameter for rows 1..inversion_parameter_count.
void apply_all_parameters(model_record& model, const inversion_state& state, float& proximity);

// How close `value` stands to its limits, from 0 one step away to 10000 within a ten-thousandth
// of a step; `running` is the maximum so far and the larger of it and this row's measure returns.
float parameter_proximity(float value, float min, float max, float step, float running);

}  // namespace trensil
