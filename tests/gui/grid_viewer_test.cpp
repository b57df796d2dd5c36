// The grid viewer offscreen: the picture is north-up whichever way a grid stores its rows, the
// colour stretch follows the values' distribution, and the pointer zooms, pans and clicks in
// world coordinates.
#include <gtest/gtest.h>

#include <QApplication>
#include <QMouseEvent>
#include <QSignalSpy>
#include <QWheelEvent>
#include <cmath>
#include <limits>

#include "grid_image.h"
#include "grid_viewer.h"
#include "gui_application.h"
#include "support/colour_ramp.h"

namespace trensil {
namespace {

constexpr float none = std::numeric_limits<float>::quiet_NaN();

// A 4 x 3 grid of 100 m cells west of 1000 and south of 2300: the north-west cell is the
// highest value, the south-east one the lowest, and the cell east of the north-west one has no
// value. With `south_first` the rows are stored from the south, as some formats do.
std::unique_ptr<memory_grid> corner_grid(bool south_first) {
    std::vector<float> north_rows = {90, none, 50, 40,  //
                                     30, 35,   45, 20,  //
                                     25, 15,   10, 0};
    grid_geometry g;
    g.columns = 4;
    g.rows = 3;
    g.x_origin = 1000.0;
    g.cell_width = 100.0;
    if (south_first) {
        g.y_origin = 2000.0;
        g.cell_height = 100.0;
        std::vector<float> flipped;
        for (int r = 2; r >= 0; --r)
            flipped.insert(flipped.end(), north_rows.begin() + 4 * r,
                           north_rows.begin() + 4 * r + 4);
        north_rows = flipped;
    } else {
        g.y_origin = 2300.0;
        g.cell_height = -100.0;
    }
    return std::make_unique<memory_grid>(g, north_rows);
}

QColor ramp(double f) {
    const colour_fraction c = colour_ramp(f);
    return QColor(static_cast<int>(std::lround(c.red * 255)),
                  static_cast<int>(std::lround(c.green * 255)),
                  static_cast<int>(std::lround(c.blue * 255)));
}

TEST(grid_viewer, picture_is_north_up_for_either_row_order) {
    application();
    for (bool south_first : {false, true}) {
        const auto grid = corner_grid(south_first);
        grid_viewer viewer;
        viewer.resize(500, 400);
        viewer.set_grid(grid.get());
        const QRectF full = viewer.full_extent();
        EXPECT_DOUBLE_EQ(full.left(), 1000.0);
        EXPECT_DOUBLE_EQ(full.bottom(), 2300.0);  // greatest northing
        EXPECT_TRUE(viewer.view_box().contains(full));

        const QImage shot = viewer.grab().toImage();
        auto at = [&](double x, double y) {
            return shot.pixelColor(viewer.to_pixel({x, y}).toPoint()).rgb();
        };
        EXPECT_EQ(at(1050, 2250), ramp(1.0).rgb()) << south_first;  // north-west, highest
        EXPECT_EQ(at(1350, 2050), ramp(0.0).rgb()) << south_first;  // south-east, lowest
        EXPECT_EQ(at(1150, 2250), QColor(236, 236, 236).rgb()) << "no value shows the ground";
    }
}

TEST(grid_viewer, stretch_spreads_a_long_tail_over_the_colours) {
    std::vector<float> values;
    for (int i = 0; i < 99; ++i) values.push_back(static_cast<float>(i));
    values.push_back(10000.0f);  // one strong anomaly
    values.push_back(none);
    values.push_back(-1e32f);
    const colour_stretch s = equalised_stretch(values);
    EXPECT_NEAR(stretch_fraction(s, 49.0f), 0.5, 0.01);  // a linear stretch would give 0.005
    EXPECT_EQ(stretch_fraction(s, -5.0f), 0.0);
    EXPECT_EQ(stretch_fraction(s, 20000.0f), 1.0);
    EXPECT_FLOAT_EQ(stretch_value(s, 0.0), 0.0f);
    EXPECT_FLOAT_EQ(stretch_value(s, 1.0), 10000.0f);
    double previous = 0.0;
    for (float v = 0.0f; v < 120.0f; v += 0.37f) {
        const double f = stretch_fraction(s, v);
        EXPECT_GE(f, previous) << v;
        previous = f;
    }
    // Many cells of one value sit mid-way along their run of levels.
    const colour_stretch flat = equalised_stretch({1, 2, 2, 2, 2, 2, 2, 3}, 9);
    EXPECT_NEAR(stretch_fraction(flat, 2.0f), 0.5, 0.07);
    EXPECT_TRUE(equalised_stretch({none, -1e31f}).empty());
}

TEST(grid_viewer, wheel_zooms_about_the_pointer_drag_pans_and_a_click_is_reported) {
    application();
    const auto grid = corner_grid(false);
    grid_viewer viewer;
    viewer.resize(500, 400);
    viewer.set_grid(grid.get());
    viewer.show();

    const QPointF pixel(120, 150);
    const QPointF before = viewer.to_world(pixel);
    const double width = viewer.view_box().width();
    QWheelEvent wheel(pixel, viewer.mapToGlobal(pixel), QPoint(), QPoint(0, 240), Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&viewer, &wheel);
    EXPECT_NEAR(viewer.view_box().width(), width / (1.25 * 1.25), 1e-6 * width);
    const QPointF after = viewer.to_world(pixel);
    EXPECT_NEAR(after.x(), before.x(), 1e-6);
    EXPECT_NEAR(after.y(), before.y(), 1e-6);

    QSignalSpy events(&viewer, &grid_viewer::pointer_event);
    auto mouse = [&viewer](QEvent::Type type, QPointF at, Qt::MouseButtons buttons) {
        QMouseEvent e(type, at, viewer.mapToGlobal(at), Qt::LeftButton, buttons, Qt::NoModifier);
        QApplication::sendEvent(&viewer, &e);
    };
    // A drag of 40 pixels right and 10 down moves the map with the pointer, and is no click.
    const QPointF grabbed = viewer.to_world({200, 200});
    mouse(QEvent::MouseButtonPress, {200, 200}, Qt::LeftButton);
    mouse(QEvent::MouseMove, {220, 205}, Qt::LeftButton);
    mouse(QEvent::MouseMove, {240, 210}, Qt::LeftButton);
    mouse(QEvent::MouseButtonRelease, {240, 210}, Qt::NoButton);
    const QPointF under = viewer.to_world({240, 210});
    EXPECT_NEAR(under.x(), grabbed.x(), 1e-6);
    EXPECT_NEAR(under.y(), grabbed.y(), 1e-6);
    for (const QList<QVariant>& e : events) EXPECT_NE(e.at(0).toInt(), grid_viewer::pointer_click);

    // A press and release within a few pixels is a click at the release point's position.
    events.clear();
    mouse(QEvent::MouseButtonPress, {300, 100}, Qt::LeftButton);
    mouse(QEvent::MouseButtonRelease, {302, 101}, Qt::NoButton);
    ASSERT_EQ(events.size(), 1);
    const QList<QVariant> click = events.front();
    EXPECT_EQ(click.at(0).toInt(), grid_viewer::pointer_click);
    EXPECT_EQ(click.at(1).toInt(), 1);
    EXPECT_FALSE(click.at(2).toBool());
    const QPointF w = viewer.to_world({302, 101});
    EXPECT_DOUBLE_EQ(click.at(3).toDouble(), w.x());
    EXPECT_DOUBLE_EQ(click.at(4).toDouble(), w.y());

    // Without a grid the lines set the extent: every point of every line counts.
    grid_viewer bare;
    bare.resize(400, 300);
    bare.set_project_lines({{1000, {{5000, 100}, {9000, 400}}}, {1010, {{4000, 900}}}}, 1000);
    EXPECT_EQ(bare.full_extent(), QRectF(QPointF(4000, 100), QPointF(9000, 900)));
    EXPECT_TRUE(bare.view_box().contains(bare.full_extent()));

    // Zoom to a line: the box is shown whole, centred.
    viewer.zoom_to_box(QRectF(QPointF(1100, 2100), QPointF(1300, 2150)));
    EXPECT_TRUE(viewer.view_box().contains(QRectF(QPointF(1100, 2100), QPointF(1300, 2150))));
    EXPECT_NEAR(viewer.view_box().center().x(), 1200.0, 1e-6);
    EXPECT_LT(viewer.view_box().width(), 300.0);
}

}  // namespace
}  // namespace trensil
