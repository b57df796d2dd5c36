// The forward response as the inversion calls it: the engine's cached recalculation.
#include "inversion/inversion_context.h"
#include "response/response_driver.h"

namespace trensil {

response_function engine_response() {
    return [](model_record& model, response_state& state, array2<float>& mag_channels,
              array2<float>& grav_channels, array1<float>& residuals) {
        recalculate_response(model, state, mag_channels, grav_channels, residuals);
    };
}

}  // namespace trensil
