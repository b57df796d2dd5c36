// Scratch files and a fresh model for the data intake tests.
#pragma once

#include <string>

#include "core/model_record.h"
#include "support/scratch_dir.h"

namespace trensil::testing {

// A model whose data definition reads `path`: first data line `nhead`, x, y, mag in columns
// 1, 2, 3 unless changed by the test.
inline model_record model_reading(const std::string& path, int nhead = 1) {
    model_record model;
    reset_model(model);
    model.data_file = path;
    model.nhead = nhead;
    model.xpos = 1;
    model.ypos = 2;
    model.magpos = 3;
    return model;
}

}  // namespace trensil::testing
