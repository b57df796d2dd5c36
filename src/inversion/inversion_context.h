// Everything an inversion works on, passed by reference to the solver and the session: the
// model, the response engine's state, the inversion's own state, the platform and the panel, the
// observer its progress goes to (the panel's own formatting unless the caller sets another), and
// the two outside routines it calls (the forward response and the model file writer).
//
//   inversion_context ctx{model, response, state, ui, view};
//   ctx.observer = &printer;                      // optional: progress as numbers elsewhere
//   int status = 0;
//   float misfit = 0;
//   run_inversion(ctx, true, inversion_mode_magnetics, 25, current_body, misfit, status);
#pragma once

#include <functional>
#include <string>

#include "core/model_record.h"
#include "inversion/inversion_observer.h"
#include "inversion/inversion_state.h"
#include "inversion/inversion_view.h"
#include "response/response_state.h"
#include "support/platform.h"

namespace trensil {

// Brings the computed rows of the two channel arrays up to date from the bodies (recomputing
// only stale bodies) and fills the residual vector over the inversion range.
using response_function = std::function<void(model_record&, response_state&, array2<float>&,
                                             array2<float>&, array1<float>&)>;

// Writes the model to a model file; false when it could not (the writer reports why).
using model_writer_function = std::function<bool(model_record&, const std::string& path)>;

// The engine's recalculate_response and the model file writer, as the program uses them.
response_function engine_response();
model_writer_function file_model_writer(platform& ui);

struct inversion_context {
    inversion_context(model_record& m, response_state& r, inversion_state& s, platform& p,
                      inversion_view& v)
        : model(m),
          response(r),
          state(s),
          ui(p),
          view(v),
          panel(v),
          observer(&panel),
          recalculate(engine_response()),
          write_model(file_model_writer(p)) {}
    // The observer points into the context itself.
    inversion_context(const inversion_context&) = delete;
    inversion_context& operator=(const inversion_context&) = delete;

    model_record& model;
    response_state& response;
    inversion_state& state;
    platform& ui;
    inversion_view& view;
    panel_progress panel;
    inversion_observer* observer;
    response_function recalculate;
    model_writer_function write_model;
};

}  // namespace trensil
