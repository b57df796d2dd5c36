#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "data_intake_files.h"
#include "io/data_definition.h"
#include "support/scripted_platform.h"

namespace trensil {
namespace {

using testing::model_reading;
using testing::scratch_dir;
using testing::write_all;

TEST(data_definition_check, first_failing_test_in_order_or_the_transform_published) {
    scratch_dir dir("iodata_definition");
    write_all(dir.file("a.dat"), "1 2 3\r\n");
    const std::vector<std::pair<void (*)(model_record&), const char*>> cases = {
        {[](model_record& m) { m.data_file = "   "; }, "No data file has been specified"},
        {[](model_record& m) { m.data_file += ".gone"; }, "The specified data file does not exist"},
        {[](model_record& m) { m.nhead = 0; },
         "The number of the first data line must be positive"},
        {[](model_record& m) { m.nstep = 0, m.xpos = 0; },
         "The data read increment must be positive"},
        {[](model_record& m) { m.xpos = 0; }, "The x column location must be positive"},
        {[](model_record& m) { m.ypos = -1; }, "The y column location must be positive"},
        {[](model_record& m) { m.magpos = 0; },
         "You must specify either a mag column or gravity column"},
    };
    for (const auto& [spoil, message] : cases) {
        model_record model = model_reading(dir.file("a.dat"));
        spoil(model);
        transform_state transforms;
        scripted_platform ui;
        EXPECT_EQ(check_data_definition(model, transforms, ui), 1) << message;
        EXPECT_EQ(ui.messages, std::vector<std::string>{message});
    }

    model_record model = model_reading(dir.file("a.dat"));
    model.magpos = 0;
    model.gravpos = 4;  // a gravity column alone is enough
    model.transform.x_scale = 0.0;
    model.transform.rotation = 90.0;
    transform_state transforms;
    scripted_platform ui;
    EXPECT_EQ(check_data_definition(model, transforms, ui), 0);
    EXPECT_TRUE(ui.messages.empty());
    EXPECT_EQ(model.transform.active, -1);
    EXPECT_EQ(model.transform.x_scale, 1.0);
    EXPECT_EQ(transforms.program_transform, model.transform);
}

}  // namespace
}  // namespace trensil
