// The grid viewer of the project window: a grid drawn through the colour ramp with its colour
// bar, the project's lines and the line being digitised drawn over it, a scale bar, mouse-wheel
// zoom about the pointer, drag pan, and zoom to a box. Positions are world coordinates of the
// grid (easting, northing); x and y use one scale, so the map is never stretched.
//
//   grid_viewer viewer;
//   viewer.set_grid(grid.get());                   // zooms to the whole grid
//   viewer.set_project_lines({{1000, {p1, p2}}}, 1000);
//   viewer.zoom_to_box(QRectF(...));
//   connect(&viewer, &grid_viewer::pointer_event, ...);   // code 5: a click
#pragma once

#include <QImage>
#include <QPointF>
#include <QRectF>
#include <QString>
#include <QWidget>
#include <vector>

#include "grid_image.h"
#include "project/grid_source.h"

namespace trensil {

class grid_viewer : public QWidget {
    Q_OBJECT
public:
    // The event codes of pointer_event.
    static constexpr int pointer_move = 0;
    static constexpr int pointer_click = 5;

    struct line_overlay {
        int number = 0;
        std::vector<QPointF> points;
    };

    explicit grid_viewer(QWidget* parent = nullptr);

    // Shows a grid (its colour picture and bar) and zooms to it; null clears it. The grid must
    // outlive its showing.
    void set_grid(const grid_source* grid);
    bool has_grid() const { return grid_ != nullptr; }
    const grid_source* grid() const { return grid_; }
    // The whole grid, or without one the lines shown.
    QRectF full_extent() const;

    // The project's lines; `selected` is the number of the one drawn strong (0 for none).
    void set_project_lines(std::vector<line_overlay> lines, int selected);
    // The baseline being digitised, the value label of each point, and the point being edited
    // (0-based, -1 for none).
    void set_digitised_line(std::vector<QPointF> points, std::vector<QString> labels,
                            int current_point);
    // The stations sampled along the baseline.
    void set_stations(std::vector<QPointF> stations);

    // Shows `box` whole with a margin, centred.
    void zoom_to_box(const QRectF& box);
    void zoom_full();
    QRectF view_box() const;
    QPointF to_world(QPointF pixel) const;
    QPointF to_pixel(QPointF world) const;
    // The map area inside the widget, the colour bar excluded.
    QRectF map_rect() const;

signals:
    // The pointer over the map; `outside` when it has left the map.
    void pointer_moved(bool outside, double x, double y);
    // A click (code 5) or move (code 0) with the button (1 left, 2 right, 4 middle) and shift.
    void pointer_event(int code, int button, bool shift, double x, double y);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void paint_grid(QPainter& p) const;
    void paint_lines(QPainter& p) const;
    void paint_colour_bar(QPainter& p) const;
    void paint_scale_bar(QPainter& p) const;
    // Zooms by `factor` (above 1 in) keeping the world point under `pixel` in place.
    void zoom_about(QPointF pixel, double factor);

    const grid_source* grid_ = nullptr;
    // The colour picture with row 0 at the north, and the grid's outer edges.
    QImage image_;
    QRectF grid_box_;
    colour_stretch stretch_;
    std::vector<line_overlay> lines_;
    int selected_line_ = 0;
    std::vector<QPointF> digitised_;
    std::vector<QString> labels_;
    int current_point_ = -1;
    std::vector<QPointF> stations_;

    // The view: the world point at the map's centre and world units per pixel (0 until set).
    QPointF centre_;
    double units_per_pixel_ = 0.0;
    // The box last zoomed to, kept in view through resizes until the user zooms or pans.
    QRectF fitted_box_;
    bool fitted_ = false;
    // A press that has not yet moved far enough to be a drag.
    bool pressed_ = false;
    bool dragging_ = false;
    QPointF press_pixel_;
    QPointF last_pixel_;
};

}  // namespace trensil
