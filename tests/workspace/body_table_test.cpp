// The body table: what it shows, what a click on a cell opens, and the commit of a typed text
// with each row's range, tolerance and response flags, limits, the Vary flag and a move by
// typed coordinates.
#include <gtest/gtest.h>

#include "editing_fixture.h"
#include "inversion/parameter_vector.h"
#include "support/number_format.h"
#include "support/text_tokens.h"
#include "workspace/body_table.h"

namespace trensil {
namespace {

struct table_fixture : editing_fixture {
    table_fixture() { display_body_parameters(ws); }

    std::string cell(int row, int column) { return view.grid_cell("Grid_body", row, column); }
    // Clicks the cell of body `body`, types `text` into the edit box and leaves it.
    void type_into(int body, int row, int column, const std::string& text) {
        ws.section.current_body = body;
        grid_body_click(ws, row, column);
        view.texts["Text_edit"] = text;
        text_edit_commit(ws);
    }
    void count_from_zero() {
        ws.response.mag_responses_computed = 0;
        ws.response.grav_responses_computed = 0;
    }
};

TEST(body_table, shows_the_current_body_row_by_row) {
    table_fixture f;
    body_record& b = f.ws.model.body(1);
    b.top.min = 12.345f;
    b.dip.vary = 0.0f;
    display_body_parameters(f.ws);
    EXPECT_EQ(f.cell(1, 1), "Thick Sheet");
    EXPECT_EQ(f.cell(2, 1), format_fixed(b.east, 1));
    // Value in the row's format, Vary as Yes / No, limits with one decimal or empty.
    EXPECT_EQ(f.cell(7, 1), "-20.00");
    EXPECT_EQ(f.cell(7, 2), "Yes");
    EXPECT_EQ(f.cell(7, 3), "12.3");
    EXPECT_EQ(f.cell(7, 4), "");
    EXPECT_EQ(f.cell(6, 2), "No");
    EXPECT_EQ(f.cell(12, 1), "2.670");
    EXPECT_EQ(f.cell(16, 1), "0.000");
    EXPECT_FALSE(f.view.visible("Frame_cylinder"));
    EXPECT_EQ(f.view.scrolls["HScroll_body"].value, 1);
    EXPECT_EQ(f.view.scrolls["HScroll_body"].max, 4);

    // A cylinder: its own labels, "N/A" on the rows it does not use, and its mesh frame.
    f.ws.section.current_body = 3;
    display_body_parameters(f.ws);
    EXPECT_EQ(f.cell(7, 0), "Depth");
    EXPECT_EQ(f.cell(9, 0), "Diameter");
    for (int row : {8, 13, 14}) EXPECT_EQ(f.cell(row, 1), "N/A") << row;
    EXPECT_TRUE(f.view.visible("Frame_cylinder"));
    EXPECT_EQ(f.view.texts["Text_num_sectors"], "12");
    EXPECT_EQ(f.view.texts["Text_Shell_Thickness"], "0.000");

    // A type the table does not offer becomes a thin sheet, as an undoable step.
    f.ws.model.body(2).type = edge_body;
    f.ws.section.current_body = 2;
    display_body_parameters(f.ws);
    EXPECT_EQ(f.ws.model.body(2).type, thin_sheet);
    EXPECT_EQ(f.view.texts["menu_undo"], "Undo Type of Body 2");
}

// What a click opens: the type list, the edit box, a flipped Vary flag (even on a row that a
// cylinder shows as "N/A": the inversion skips it there), or nothing.
TEST(body_table, a_click_opens_the_cell_its_row_allows) {
    enum class opens { nothing, edit_box, type_list, vary_flip };
    struct click_case {
        int body, row, column;
        opens what;
    };
    const click_case cases[] = {
        {1, 1, 1, opens::type_list}, {1, 1, 2, opens::nothing},   {1, 2, 1, opens::edit_box},
        {1, 3, 3, opens::nothing},   {1, 4, 1, opens::edit_box},  {1, 18, 4, opens::edit_box},
        {1, 9, 2, opens::vary_flip}, {1, 0, 1, opens::nothing},   {1, 6, 0, opens::nothing},
        {3, 8, 1, opens::nothing},   {3, 13, 3, opens::nothing},  {3, 14, 4, opens::nothing},
        {3, 7, 1, opens::edit_box},  {3, 8, 2, opens::vary_flip},
    };
    for (const click_case& c : cases) {
        SCOPED_TRACE(::testing::Message()
                     << "body " << c.body << " cell " << c.row << "," << c.column);
        table_fixture f;
        f.ws.section.current_body = c.body;
        display_body_parameters(f.ws);
        const float vary = property_by_row(f.ws.model.body(c.body), std::max(c.row, 4))->vary;
        f.view.shown.clear();
        grid_body_click(f.ws, c.row, c.column);
        EXPECT_EQ(f.view.shown["Text_edit"], c.what == opens::edit_box);
        EXPECT_EQ(f.view.shown["Combo_model_type"], c.what == opens::type_list);
        const float now = property_by_row(f.ws.model.body(c.body), std::max(c.row, 4))->vary;
        EXPECT_EQ(now != vary, c.what == opens::vary_flip);
        EXPECT_EQ(f.ws.model_changed, c.what == opens::vary_flip);
        if (c.what == opens::vary_flip) {
            EXPECT_EQ(f.cell(c.row, 2), now != 0.0f ? "Yes" : "No");
        }
        EXPECT_EQ(f.responses_computed(), 0);  // a click recalculates nothing
    }
}

TEST(body_table, edit_box_lies_over_its_cell_with_the_cell_text) {
    table_fixture f;
    grid_body_click(f.ws, 6, 1);
    // Grid at (10, 30), cells 100 by 20: 1.5 in, 1 down, 2 wider.
    EXPECT_EQ(f.view.rects["Text_edit"], (view_rect{111.5, 151.0, 102.0, 20.0}));
    EXPECT_EQ(f.view.texts["Text_edit"], "90.0");
    EXPECT_EQ(f.view.focus, "Text_edit");
    f.ws.section.current_body = 3;
    grid_body_click(f.ws, 9, 1);
    grid_body_click(f.ws, 1, 1);
    EXPECT_EQ(f.view.selected["Combo_model_type"], 2);  // "Cylinder/Pipe"
}

// A typed value: stored within the row's range (bounds included) and beyond its tolerance,
// else the model and the cell stay as they were.
TEST(body_table, value_commit_keeps_ranges_and_tolerances) {
    struct value_case {
        int body, row;
        const char* text;
        bool stored;
    };
    const value_case cases[] = {
        {1, 5, "360", true},       {1, 5, "360.01", false},  {1, 5, "-360", true},
        {1, 6, "0", true},         {1, 6, "180", true},      {1, 6, "180.5", false},
        {1, 9, "1", true},         {1, 9, "0.99", false},    {3, 9, "0.5", true},  // cylinder
        {1, 8, "0", true},         {1, 8, "-1", false},      {1, 10, "-0.01", false},
        {1, 13, "45", true},       {1, 13, "45.1", false},   {1, 14, "-80", true},
        {1, 14, "-80.5", false},   {1, 16, "-0.001", false}, {1, 16, "0.0005", false},  // tolerance
        {1, 11, "50001", false},  // exactly the tolerance 1.0 from 50000: no change
        {1, 11, "50001.01", true}, {1, 7, "abc", false},     {1, 7, "", false},
        {1, 7, " -35.5 ", true},
    };
    for (const value_case& c : cases) {
        SCOPED_TRACE(::testing::Message() << "row " << c.row << " text '" << c.text << "'");
        table_fixture f;
        f.ws.section.current_body = c.body;
        display_body_parameters(f.ws);
        const auto before = body_definitions(f.ws.model);
        const std::string old_cell = f.cell(c.row, 1);
        f.type_into(c.body, c.row, 1, c.text);
        const float now = property_by_row(f.ws.model.body(c.body), c.row)->value;
        EXPECT_EQ(!(body_definitions(f.ws.model) == before), c.stored);
        EXPECT_EQ(f.ws.model_changed, c.stored);
        if (c.stored) {
            EXPECT_FLOAT_EQ(now, static_cast<float>(parse_number(c.text)));
            EXPECT_EQ(f.cell(c.row, 1), c.text);  // the raw text, not reformatted
        } else {
            EXPECT_EQ(f.cell(c.row, 1), old_cell);
        }
        EXPECT_FALSE(f.view.visible("Text_edit"));
    }
}

// Which responses a value edit recomputes goes by row number and no other way: rows up to 12
// the gravity, all rows but 12 the magnetics.
TEST(body_table, value_commit_clears_the_response_flags_by_row) {
    struct flag_case {
        int row;
        const char* text;
        long magnetic, gravity;
    };
    const flag_case cases[] = {
        {4, "320", 1, 1},  {5, "10", 1, 1},  {7, "-35", 1, 1}, {9, "45", 1, 1},
        {11, "900", 1, 1},  // susceptibility clears the gravity needlessly
        {12, "2.9", 0, 1}, {13, "5", 1, 0},  {14, "10", 1, 0}, {15, "5", 1, 0},
        {16, "0.5", 1, 0}, {17, "30", 1, 0}, {18, "20", 1, 0},
    };
    for (const flag_case& c : cases) {
        SCOPED_TRACE(::testing::Message() << "row " << c.row);
        table_fixture f;
        f.count_from_zero();
        f.type_into(4, c.row, 1, c.text);
        EXPECT_EQ(f.ws.response.mag_responses_computed, c.magnetic);
        EXPECT_EQ(f.ws.response.grav_responses_computed, c.gravity);
    }
}

TEST(body_table, limits_store_and_show_with_one_decimal_and_recalculate_nothing) {
    table_fixture f;
    body_record& b = f.ws.model.body(1);
    f.count_from_zero();
    f.type_into(1, 7, 3, "12.345");
    EXPECT_FLOAT_EQ(b.top.min, 12.345f);
    EXPECT_EQ(f.cell(7, 3), "12.3");
    f.type_into(1, 7, 4, "50");
    f.type_into(1, 7, 3, "  ");  // cleared
    EXPECT_EQ(b.top.min, undefined_value);
    EXPECT_FLOAT_EQ(b.top.max, 50.0f);
    EXPECT_EQ(f.cell(7, 3), "");
    f.type_into(1, 7, 4, "high");  // not a number: nothing
    EXPECT_FLOAT_EQ(b.top.max, 50.0f);
    EXPECT_EQ(f.responses_computed(), 0);
    EXPECT_FALSE(f.ws.model_changed);
    EXPECT_EQ(f.view.texts["menu_undo"], "Undo Min Top of Body 1");

    // Rows 8, 9, 10 and 16 refuse a negative limit; the empty text's -99999 is one, so their
    // limits cannot be cleared by the table.
    f.type_into(1, 9, 3, "5");
    f.type_into(1, 9, 3, "-5");
    f.type_into(1, 9, 3, "");
    EXPECT_FLOAT_EQ(b.width.min, 5.0f);

    // A limit of an angle or of the magnetisation makes the field coefficients stale.
    b.magnetisation = 1.0f;
    f.type_into(1, 7, 4, "60");
    EXPECT_EQ(b.magnetisation, 1.0f);
    f.type_into(1, 6, 4, "120");
    EXPECT_EQ(b.magnetisation, -1.0f);
}

// Typed coordinates move the body to the nearest station (the first of equals) and rewrite
// rows 2 to 4; the line runs east from 1000 at 10 m.
TEST(body_table, typed_coordinates_move_the_body_to_the_nearest_station) {
    struct move_case {
        int row;
        const char* text;
        float distance;
    };
    const move_case cases[] = {
        {2, "1234", 230.0f},                         // station 24 at 1230
        {2, "1235", 230.0f},                         // halfway between 1230 and 1240: the first
        {2, "-500", 0.0f},       {3, "4000", 0.0f},  // every station at northing 5000: the first
        {3, "5000.005", 300.0f},                     // within 0.01 of the body's northing: no move
    };
    for (const move_case& c : cases) {
        SCOPED_TRACE(c.text);
        table_fixture f;
        f.type_into(1, c.row, 1, c.text);
        const body_record& b = f.ws.model.body(1);
        EXPECT_FLOAT_EQ(b.distance.value, c.distance);
        EXPECT_NEAR(b.east, 1000.0 + c.distance, 1e-6);
        EXPECT_EQ(f.cell(2, 1), format_fixed(b.east, 1));
        EXPECT_EQ(f.cell(4, 1), format_fixed(c.distance, 1));
    }
}

}  // namespace
}  // namespace trensil
