// How a running inversion reports its progress: as numbers (iteration, misfit, the parameter
// vector), to one observer that the caller chooses. The inversion panel formats them into its
// boxes ("Initial Misfit", "Final Misfit", the iteration count); the batch tool prints them.
// Both solvers report through it.
//
//   class printer : public inversion_observer {
//       void run_started(const inversion_progress& p) override { print(p.misfit); }
//       void iteration_done(const inversion_progress& p) override { print(p.iteration, p.misfit); }
//   };
//   printer out;
//   ctx.observer = &out;
#pragma once

#include <vector>

#include "inversion/inversion_state.h"
#include "inversion/inversion_view.h"

namespace trensil {

struct inversion_progress {
    int iteration = 0;  // 0 for the model the run starts from
    // weight x root of the sum of squares over N; a joint fit adds the other data type's
    // residuals scaled by the ratio of the noise levels
    float misfit = 0.0f;
    std::vector<float> parameters;  // the value column of the parameter table, rows 1.. in order
};

class inversion_observer {
public:
    virtual ~inversion_observer() = default;
    // The model the run starts from, before the first iteration.
    virtual void run_started(const inversion_progress& progress) = 0;
    // The end of an iteration: the misfit of the model as it now stands.
    virtual void iteration_done(const inversion_progress& progress) = 0;
};

// The progress of a run at `iteration` with `misfit`, the parameters read from the table.
inversion_progress make_progress(const inversion_state& state, int iteration, float misfit);

// The panel's formatting: the initial misfit in the first box of Text_MAGINV_misfit, each
// iteration's count in Text_num_iterations and its misfit in the second box, format "0.0000".
class panel_progress : public inversion_observer {
public:
    explicit panel_progress(inversion_view& view) : view_(view) {}
    void run_started(const inversion_progress& progress) override;
    void iteration_done(const inversion_progress& progress) override;

private:
    inversion_view& view_;
};

}  // namespace trensil
