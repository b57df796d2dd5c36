// The drawing control of the modelling window in Qt: a white plot with axes, the loaded series,
// and a retained list of lines, markers, polygons and texts in world coordinates, repainted on
// every redraw with the current axes. Polygons are clipped to the plot and picked topmost first.
#pragma once

#include <QPointF>
#include <QRectF>
#include <QWidget>
#include <vector>

#include "workspace/graph_control.h"

namespace trensil {

class graph_widget : public QWidget, public graph_control {
    Q_OBJECT
public:
    explicit graph_widget(QWidget* parent = nullptr);

    void clear_data() override;
    void clear_objects() override;
    void load_data(const plot_data& data) override;
    void redraw() override;
    void draw_line(float x1, float y1, float x2, float y2, std::int32_t colour, int width) override;
    void draw_marker(float x, float y, int style, std::int32_t colour) override;
    void draw_polygon(int count, const float* x, const float* y, std::int32_t line_colour,
                      std::int32_t fill_colour, int width) override;
    void draw_text(int mode, float x, float y, const std::string& text) override;
    int width() const override { return QWidget::width(); }
    int height() const override { return QWidget::height(); }
    float y_scale() const override;
    float font_height() const override;
    float plot_left() const override { return static_cast<float>(plot_rect().left()); }
    float plot_width() const override { return static_cast<float>(plot_rect().width()); }

    // What the graph holds, for tests and captures.
    const plot_data& series() const { return series_; }
    int polygon_count() const;
    // The polygon under a point of the widget, numbered from 1; 0 for none.
    int polygon_at(QPointF pixel) const;
    // The plot rectangle inside the axes, in pixels.
    QRectF plot_rect() const;
    // The ticks of an axis from lo to hi at `step` (rounded to three significant digits).
    static std::vector<double> tick_values(double lo, double hi, double step);
    // World position of a pixel of the widget.
    QPointF to_world(QPointF pixel) const;
    QPointF to_pixel(double x, double y) const;

    // Paints the graph into any painter, as shown (used by the captures and the benchmark).
    void paint_graph(QPainter& painter) const;

signals:
    void pointer_moved(bool outside, double x, double y);
    void object_clicked(int polygon);
    void double_clicked();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

private:
    // World to pixel mapping of one paint: the axes and the plot rectangle, worked out once.
    struct pixel_frame {
        QRectF plot;
        double x0 = 0.0, y0 = 0.0, sx = 1.0, sy = 1.0;
        QPointF operator()(double x, double y) const {
            return {plot.left() + (x - x0) * sx, plot.bottom() - (y - y0) * sy};
        }
    };
    pixel_frame frame() const;
    struct object {
        enum kind { line, marker, polygon, text } what = line;
        std::vector<QPointF> points;  // world coordinates
        std::int32_t colour = 0;
        std::int32_t fill = no_fill;
        int width = 1;
        int size = 10;
        QString label;
    };
    // The axes in use: the set ones, or the loaded data's extent while they are unset.
    void axes(double& x0, double& x1, double& y0, double& y1) const;
    void paint_axes(QPainter& p, const pixel_frame& f) const;
    void paint_series(QPainter& p, const pixel_frame& f) const;
    void paint_objects(QPainter& p, const pixel_frame& f) const;

    plot_data series_;
    std::vector<object> objects_;
};

}  // namespace trensil
