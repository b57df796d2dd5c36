#include "io/data_definition.h"

#include "support/paths.h"
#include "support/text_tokens.h"

namespace trensil {

int check_data_definition(model_record& model, transform_state& transforms, platform& ui) {
    const char* failure = nullptr;
    if (trim_text(model.data_file).empty())
        failure = "No data file has been specified";
    else if (!file_exists(model.data_file))
        failure = "The specified data file does not exist";
    else if (model.nhead < 1)
        failure = "The number of the first data line must be positive";
    else if (model.nstep < 1)
        failure = "The data read increment must be positive";
    else if (model.xpos < 1)
        failure = "The x column location must be positive";
    else if (model.ypos < 1)
        failure = "The y column location must be positive";
    else if (model.magpos < 1 && model.gravpos < 1)
        failure = "You must specify either a mag column or gravity column";
    if (failure != nullptr) {
        ui.show_message(failure);
        return 1;
    }
    prepare_transform(model.transform);
    transforms.program_transform = model.transform;
    return 0;
}

}  // namespace trensil
