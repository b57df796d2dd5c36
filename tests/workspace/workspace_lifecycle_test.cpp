#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "io/profile_data_export.h"
#include "support/memory_settings_store.h"
#include "support/number_format.h"
#include "support/scratch_dir.h"
#include "support/scripted_platform.h"
#include "support/text_tokens.h"
#include "workspace/modelling_workspace.h"
#include "workspace_files.h"
#include "workspace_fixture.h"

namespace trensil {
namespace {

// Runs each test in a scratch directory so that the working directory setting has a home.
class workspace_test : public ::testing::Test {
protected:
    void SetUp() override {
        old_ = std::filesystem::current_path();
        std::filesystem::current_path(folder_);
    }
    void TearDown() override { std::filesystem::current_path(old_); }
    testing::scratch_dir scratch_{std::string("ws_") +
                                  ::testing::UnitTest::GetInstance()->current_test_info()->name()};
    std::filesystem::path folder_ = scratch_.path(), old_;
    workspace_fixture f;
};

TEST_F(workspace_test, settings_written_at_unload_come_back_at_load) {
    form_load(f.ws);
    f.view.texts["Text_mag_intensity"] = "51000";
    f.view.texts["Text_mag_inclination"] = "-55.5";
    f.view.texts["Text_mag_declination"] = "3";
    f.view.checks["menu_display_axes"] = false;
    f.view.resize_form(9000, 7000);
    form_unload(f.ws);
    EXPECT_FALSE(f.ws.modeller_open);
    EXPECT_EQ(f.setting("FormSize"), "9000;7000");
    EXPECT_EQ(f.setting("DisplayAxes"), "0");
    EXPECT_EQ(f.setting("WorkingDirectory"), std::filesystem::current_path().string());

    workspace_fixture second;
    second.settings = f.settings;
    form_load(second.ws);
    EXPECT_EQ(second.view.text("Text_mag_intensity"), "51000");
    EXPECT_FLOAT_EQ(second.ws.model.mag_inclination, -55.5f);
    EXPECT_FLOAT_EQ(second.ws.model.mag_declination, 3.0f);
    EXPECT_EQ(second.view.width, 9000);
    EXPECT_EQ(second.view.height, 7000);
    EXPECT_FALSE(second.view.checked("menu_display_axes"));
    EXPECT_FALSE(second.controls[4].display_x_axis);
}

TEST_F(workspace_test, unusable_settings_leave_the_defaults_and_design_size) {
    f.settings.save_setting("Ostrand", "Trensil", "FormSize", "");
    f.settings.save_setting("Ostrand", "Trensil", "MagIntensity", "strong");
    f.settings.save_setting("Ostrand", "Trensil", "WorkingDirectory", "/no/such/folder");
    form_load(f.ws);
    EXPECT_EQ(f.view.width, 12000);
    EXPECT_FLOAT_EQ(f.ws.model.mag_intensity, 56000.0f);
    EXPECT_EQ(f.view.text("Text_mag_intensity"), "56000");
    EXPECT_EQ(f.view.text("Text_mag_inclination"), "-65");
    EXPECT_TRUE(f.ws.modeller_open && f.ws.form_ready && !f.ws.updating_display);

    // An empty intensity box stores no field texts at unload.
    f.view.texts["Text_mag_intensity"] = "";
    form_unload(f.ws);
    EXPECT_EQ(f.setting("MagIntensity"), "strong");
}

TEST_F(workspace_test, body_defaults_store_eight_values_only) {
    form_load(f.ws);
    save_body_defaults(f.ws);  // no body: nothing
    EXPECT_EQ(f.settings.size(), 0u);
    f.ws.model.num_bodies = 1;
    new_body_defaults(f.ws.model, 1, nullptr);
    body_record& b = f.ws.model.body(1);
    b.dip.value = 62.25f;
    b.density.value = 2.8567f;
    b.top.value = -30.0f;
    f.ws.section.current_body = 1;
    save_body_defaults(f.ws);
    EXPECT_EQ(f.settings.size(), 8u);
    EXPECT_EQ(f.setting("Dip"), "62.3");
    EXPECT_EQ(f.setting("Density"), "2.857");
    EXPECT_EQ(f.setting("Thick"), "100.00");
    EXPECT_EQ(f.setting("Colour"), "16711680");
}

TEST_F(workspace_test, model_fields_follow_their_acceptance_rules) {
    form_load(f.ws);
    const model_record& m = f.ws.model;
    f.type("Text_MAGINV_ypos", "abc");
    EXPECT_EQ(m.ypos, 0);  // "not used"
    f.type("Text_MAGINV_xpos", "abc");
    EXPECT_EQ(m.xpos, 2);  // the old column stays
    f.type("Text_MAGINV_xpos", "4");
    EXPECT_EQ(m.xpos, 4);
    f.type("Text_MAGINV_nhead", "-3");
    EXPECT_EQ(m.nhead, 0);
    f.type("Text_MAGINV_station_spacing", "-5");
    EXPECT_FLOAT_EQ(m.station_spacing, 0.0f);
    EXPECT_TRUE(f.ws.model_changed);

    // A change of 0.05 in the sensor offset changes nothing, not even the stored value.
    f.ws.model.profile_ready = -1;
    f.type("Text_MAGINV_sensor_offset", "10.05");
    EXPECT_FLOAT_EQ(m.sensor_offset, 10.0f);
    EXPECT_EQ(m.profile_ready, -1);
    f.type("Text_MAGINV_sensor_offset", "10.5");
    EXPECT_FLOAT_EQ(m.sensor_offset, 10.5f);
    EXPECT_EQ(m.profile_ready, 0);
    f.type("Text_MAGINV_sensor_offset", "-1");
    EXPECT_FLOAT_EQ(m.sensor_offset, 10.5f);

    f.type("Text_MAGINV_basemag", "none");
    EXPECT_FLOAT_EQ(m.basemag, undefined_value);
    f.type("Text_MAGINV_residual", "3.7");
    EXPECT_EQ(m.residual, 3);

    // Nothing acts while the window writes its own controls.
    f.ws.updating_display = true;
    f.type("Text_MAGINV_xpos", "7");
    EXPECT_EQ(m.xpos, 4);
}

TEST_F(workspace_test, opened_model_is_drawn_zoomed_and_panned) {
    form_load(f.ws);
    EXPECT_EQ(menu_open_model(f.ws, 0), -1);  // cancelled
    EXPECT_TRUE(f.ui.messages.empty());
    f.ui.file_answers.push_back(std::string("/no/such/model.qvx"));
    EXPECT_EQ(menu_open_model(f.ws, 0), -1);
    ASSERT_EQ(f.ui.messages, std::vector<std::string>{"That file does not exist"});
    f.ui.messages.clear();

    const std::string path = testing_files::write_example_model(folder_ / "lines");
    ASSERT_EQ(open_model_file(f.ws, path), 0) << (f.ui.messages.empty() ? "" : f.ui.messages[0]);
    EXPECT_EQ(f.view.caption, "Trensil: line_a.qvx");
    EXPECT_EQ(f.view.tab, 1);
    EXPECT_EQ(f.view.text("Text_number_locations"), "201");
    EXPECT_FALSE(f.ws.model_changed);

    const plot_data& mag = f.controls[0].loaded;
    ASSERT_EQ(mag.rows(), 201);
    ASSERT_EQ(mag.y.size(), 2u);
    EXPECT_NEAR(mag.y[0][100] - mag.y[0][0], 50.0, 0.5);  // observed, levelled, at the bump
    EXPECT_FALSE(std::isnan(mag.y[1][100]));              // computed
    EXPECT_EQ(f.controls[4].polygons().size(), 2u);
    EXPECT_NEAR(f.controls[4].xaxismin, 0.0f, 1e-3f);
    EXPECT_NEAR(f.controls[4].xaxismax, 2000.0f, 1e-2f);

    // Zoom to 200% and pan right: all graphs follow.
    combo_zoom_selected(f.ws, 3);
    EXPECT_NEAR(f.controls[0].xaxismax - f.controls[0].xaxismin, 1000.0f, 1e-2f);
    EXPECT_EQ(f.view.scrolls["HScroll_pan"].max, 4);
    hscroll_pan_changed(f.ws, 4);
    EXPECT_NEAR(f.controls[4].xaxismax, 2000.0f, 1e-2f);
    EXPECT_NEAR(f.controls[2].xaxismin, 1000.0f, 1e-2f);
}

// The fields of line `index` (0 the first) of a csv text, trimmed.
std::vector<std::string> csv_line(const std::string& text, int index) {
    std::istringstream in(text);
    std::string line;
    for (int i = 0; i <= index; ++i) std::getline(in, line);
    std::vector<std::string> fields;
    std::istringstream parts(line);
    for (std::string f; std::getline(parts, f, ',');) fields.push_back(trim_text(f));
    return fields;
}

TEST_F(workspace_test, batch_tool_writes_the_windows_profile_export_of_a_total_gradient_model) {
    // The synthetic line with magnetic and gravity data; its model file asks for the total
    // gradient (the fourth value of its fourth line).
    const auto examples = std::filesystem::path(TRENSIL_SOURCE_DIR) / "examples" / "synthetic";
    std::filesystem::copy_file(examples / "synthetic_line.csv", folder_ / "synthetic_line.csv");
    std::string text = testing::read_all((examples / "synthetic_truth.qvx").string());
    const std::size_t line4 = text.find(" 0  11  1  0 ");
    ASSERT_NE(line4, std::string::npos);
    text.replace(line4, 13, " 0  11  1  1 ");
    const std::string model = (folder_ / "line.qvx").string();
    testing::write_all(model, text);

    form_load(f.ws);
    ASSERT_EQ(open_model_file(f.ws, model), 0) << (f.ui.messages.empty() ? "" : f.ui.messages[0]);
    EXPECT_TRUE(f.view.checked("Check_display_total_gradient"));
    EXPECT_EQ(f.controls[1].title, "Calculated Total Gradient");
    const std::string window_csv = (folder_ / "window.csv").string();
    f.ui.file_answers.push_back(window_csv);
    ASSERT_EQ(export_profile_data(f.ws.model, f.ui), 0);
    const std::string window = testing::read_all(window_csv);

    const std::string cli = std::string(TRENSIL_BINARY_DIR) + "/bin/trensil-cli";
    const auto run = [&](const std::string& arguments) {
        return std::system(("'" + cli + "' " + arguments + " >cli.out 2>&1").c_str());
    };
    ASSERT_EQ(run("compute line.qvx -o batch.csv"), 0) << testing::read_all("cli.out");
    EXPECT_EQ(testing::read_all("batch.csv"), window);

    // The magnetic block carries the total gradient, the gravity block the vertical gradient
    // under its "_TG" heading.
    const std::vector<std::string> head = csv_line(window, 1);
    ASSERT_EQ(head.size(), 17u);
    EXPECT_EQ(head[10], "TMI_Mod_TG");
    EXPECT_EQ(head[16], "Grav_Mod_TG");
    const profile_block& p = f.ws.model.profile;
    const std::vector<std::string> station = csv_line(window, 2 + 200);
    EXPECT_EQ(station[10], format_fixed(p.mag_channels(computed_total_gradient, 201), 4));
    EXPECT_NE(p.mag_channels(computed_total_gradient, 201),
              p.mag_channels(computed_vertical_gradient, 201));
    EXPECT_EQ(station[16], format_fixed(p.grav_channels(computed_vertical_gradient, 201), 4));

    // An inversion's csv derives the same observed rows (the computed ones move with the fit).
    ASSERT_EQ(run("invert line.qvx --body 1 --iterations 1 -o fit.qvx --csv fit.csv"), 0)
        << testing::read_all("cli.out");
    const std::string fitted = testing::read_all("fit.csv");
    EXPECT_EQ(csv_line(fitted, 1), head);
    for (int line : {2, 202, 402}) {
        std::vector<std::string> a = csv_line(fitted, line), b = csv_line(window, line);
        ASSERT_EQ(a.size(), 17u);
        for (int computed : {8, 9, 10, 14, 15, 16}) a[computed] = b[computed] = "";
        EXPECT_EQ(a, b) << "line " << line;
    }
}

}  // namespace
}  // namespace trensil
