// The model file writer as the inversion calls it: the whole model file, no question asked.
#include "inversion/inversion_context.h"
#include "io/model_file_writer.h"

namespace trensil {

model_writer_function file_model_writer(platform& ui) {
    return [&ui](model_record& model, const std::string& path) {
        return write_model_core(false, path, model, ui);
    };
}

}  // namespace trensil
