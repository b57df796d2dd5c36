#include "grid_viewer.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>

#include "support/colour_ramp.h"

namespace trensil {

namespace {
constexpr int colour_bar_width = 78;
// A press that moves less than this many pixels before release is a click.
constexpr double click_slop = 4.0;
// One notch of the wheel zooms by this factor.
constexpr double wheel_step = 1.25;

QColor ramp_colour(double fraction) {
    const colour_fraction c = colour_ramp(fraction);
    return QColor::fromRgbF(c.red, c.green, c.blue);
}

// Tidy label of a value: fewer decimals as the values grow.
QString value_label(double v, double span) {
    const int decimals = span >= 100.0 ? 0 : span >= 1.0 ? 1 : span >= 0.01 ? 3 : 5;
    return QString::number(v, 'f', decimals);
}
}  // namespace

grid_viewer::grid_viewer(QWidget* parent) : QWidget(parent) {
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMinimumSize(240, 180);
    QFont f = font();
    f.setPointSize(8);
    setFont(f);
}

void grid_viewer::set_grid(const grid_source* grid) {
    grid_ = nullptr;
    image_ = QImage();
    stretch_ = colour_stretch{};
    const grid_geometry* g = grid ? &grid->geometry() : nullptr;
    if (g && g->columns > 0 && g->rows > 0) {
        // The picture runs from the north whichever way the grid stores its rows.
        std::vector<float> values;
        values.reserve(static_cast<std::size_t>(g->columns) * static_cast<std::size_t>(g->rows));
        for (int r = 0; r < g->rows; ++r) {
            const float* row = grid->row_values(g->cell_height < 0.0 ? r : g->rows - 1 - r);
            values.insert(values.end(), row, row + g->columns);
        }
        stretch_ = equalised_stretch(values);
        image_ = grid_colour_image(g->columns, g->rows, values, stretch_);
        const grid_extent e = extent_of(*grid);
        grid_box_ = QRectF(QPointF(e.xmin, e.ymin), QPointF(e.xmax, e.ymax));
        grid_ = grid;
    }
    zoom_full();
}

QRectF grid_viewer::full_extent() const {
    if (has_grid()) return grid_box_;
    // QRectF's union ignores empty rectangles, so the points' bounds are taken by hand.
    double x0 = 1e300, y0 = 1e300, x1 = -1e300, y1 = -1e300;
    auto take = [&](const std::vector<QPointF>& points) {
        for (const QPointF& p : points) {
            x0 = std::min(x0, p.x()), x1 = std::max(x1, p.x());
            y0 = std::min(y0, p.y()), y1 = std::max(y1, p.y());
        }
    };
    for (const line_overlay& l : lines_) take(l.points);
    take(digitised_);
    if (x0 > x1) return {};
    return QRectF(QPointF(x0, y0), QPointF(x1, y1));
}

void grid_viewer::set_project_lines(std::vector<line_overlay> lines, int selected) {
    const bool first = !has_grid() && lines_.empty() && digitised_.empty();
    lines_ = std::move(lines);
    selected_line_ = selected;
    if (first) zoom_full();
    update();
}

void grid_viewer::set_digitised_line(std::vector<QPointF> points, std::vector<QString> labels,
                                     int current_point) {
    digitised_ = std::move(points);
    labels_ = std::move(labels);
    current_point_ = current_point;
    update();
}

void grid_viewer::set_stations(std::vector<QPointF> stations) {
    stations_ = std::move(stations);
    update();
}

QRectF grid_viewer::map_rect() const {
    const double bar = has_grid() ? colour_bar_width : 0;
    return QRectF(0, 0, std::max(1.0, width() - bar), std::max(1, height()));
}

void grid_viewer::zoom_to_box(const QRectF& box) {
    fitted_box_ = box;
    fitted_ = true;
    const QRectF area = map_rect();
    QRectF b = box.normalized();
    // A point or a line along one axis: show at least a tenth of the grid around it.
    const QRectF full = full_extent();
    const double least = std::max(full.width(), full.height()) / 10.0;
    if (b.width() < least && b.height() < least) {
        const double grow = (least - std::max(b.width(), b.height())) / 2.0;
        b.adjust(-grow, -grow, grow, grow);
    }
    centre_ = b.center();
    const double upp = std::max(b.width() / area.width(), b.height() / area.height()) * 1.1;
    units_per_pixel_ = upp > 0.0 ? upp : 1.0;
    update();
}

void grid_viewer::zoom_full() {
    const QRectF full = full_extent();
    if (full.isNull() || (full.width() <= 0.0 && full.height() <= 0.0)) {
        centre_ = full.center();
        units_per_pixel_ = 0.0;
        update();
        return;
    }
    zoom_to_box(full);
}

QRectF grid_viewer::view_box() const {
    const QRectF area = map_rect();
    const QPointF a = to_world(area.topLeft()), b = to_world(area.bottomRight());
    return QRectF(QPointF(a.x(), b.y()), QPointF(b.x(), a.y()));
}

QPointF grid_viewer::to_world(QPointF pixel) const {
    const QRectF area = map_rect();
    const double upp = units_per_pixel_ > 0.0 ? units_per_pixel_ : 1.0;
    return {centre_.x() + (pixel.x() - area.center().x()) * upp,
            centre_.y() - (pixel.y() - area.center().y()) * upp};
}

QPointF grid_viewer::to_pixel(QPointF world) const {
    const QRectF area = map_rect();
    const double upp = units_per_pixel_ > 0.0 ? units_per_pixel_ : 1.0;
    return {area.center().x() + (world.x() - centre_.x()) / upp,
            area.center().y() - (world.y() - centre_.y()) / upp};
}

void grid_viewer::paintEvent(QPaintEvent*) {
    QPainter p(this);
    p.fillRect(rect(), QColor(236, 236, 236));
    const QRectF area = map_rect();
    p.save();
    p.setClipRect(area);
    paint_grid(p);
    p.setRenderHint(QPainter::Antialiasing);
    paint_lines(p);
    paint_scale_bar(p);
    p.restore();
    if (has_grid()) paint_colour_bar(p);
    if (!has_grid() && lines_.empty() && digitised_.empty()) {
        p.setPen(QColor(110, 110, 110));
        p.drawText(area, Qt::AlignCenter, "No grid: choose a grid file above");
    }
}

// Only the cells in view are scaled, so that a deep zoom on a large grid stays cheap.
void grid_viewer::paint_grid(QPainter& p) const {
    if (image_.isNull()) return;
    // Picture rows run from the north edge (grid_box_.bottom() is the greatest northing).
    const QRectF view = view_box();
    const double cell_x = grid_box_.width() / image_.width();
    const double cell_y = grid_box_.height() / image_.height();
    const double west = grid_box_.left(), north = grid_box_.bottom();
    auto held = [](double v, int most) { return std::clamp(v, 0.0, static_cast<double>(most)); };
    const double c0 = held(std::floor((view.left() - west) / cell_x), image_.width());
    const double c1 = held(std::ceil((view.right() - west) / cell_x), image_.width());
    const double r0 = held(std::floor((north - view.bottom()) / cell_y), image_.height());
    const double r1 = held(std::ceil((north - view.top()) / cell_y), image_.height());
    if (c1 <= c0 || r1 <= r0) return;
    const QPointF top_left = to_pixel({west + c0 * cell_x, north - r0 * cell_y});
    const QPointF bottom_right = to_pixel({west + c1 * cell_x, north - r1 * cell_y});
    p.drawImage(QRectF(top_left, bottom_right), image_, QRectF(c0, r0, c1 - c0, r1 - r0));
}

void grid_viewer::paint_lines(QPainter& p) const {
    auto polyline = [this](const std::vector<QPointF>& points) {
        QPolygonF poly;
        poly.reserve(static_cast<qsizetype>(points.size()));
        for (const QPointF& w : points) poly << to_pixel(w);
        return poly;
    };
    auto halo_text = [&p](QPointF at, const QString& text) {
        p.setPen(QPen(QColor(255, 255, 255, 200), 3));
        QPainterPath path;
        path.addText(at, p.font(), text);
        p.drawPath(path);
        p.fillPath(path, Qt::black);
    };
    // The current line last, so that it stays on top of any line it crosses.
    std::vector<const line_overlay*> order;
    for (const line_overlay& line : lines_)
        if (!line.points.empty() && line.number != selected_line_) order.push_back(&line);
    for (const line_overlay& line : lines_)
        if (!line.points.empty() && line.number == selected_line_) order.push_back(&line);
    for (const line_overlay* l : order) {
        const line_overlay& line = *l;
        const bool selected = line.number == selected_line_;
        const QPolygonF poly = polyline(line.points);
        p.setPen(QPen(QColor(255, 255, 255, 180), selected ? 6 : 4));
        p.drawPolyline(poly);
        p.setPen(QPen(selected ? QColor(0, 0, 0) : QColor(70, 70, 70), selected ? 3 : 1.5));
        p.drawPolyline(poly);
        // The current line's number above its start, the others' below, apart where they meet.
        halo_text(poly.front() + QPointF(4, selected ? -6 : 16), QString::number(line.number));
    }
    if (!stations_.empty() && stations_.size() <= 4096) {
        p.setPen(Qt::NoPen);
        p.setBrush(QColor(20, 20, 20));
        for (const QPointF& s : stations_) p.drawEllipse(to_pixel(s), 1.6, 1.6);
    }
    if (digitised_.empty()) return;
    const QPolygonF poly = polyline(digitised_);
    p.setBrush(Qt::NoBrush);
    p.setPen(QPen(QColor(255, 255, 255, 200), 5));
    p.drawPolyline(poly);
    p.setPen(QPen(QColor(200, 0, 0), 2.5));
    p.drawPolyline(poly);
    for (int i = 0; i < poly.size(); ++i) {
        const bool current = i == current_point_;
        const double half = current ? 5.0 : 3.5;
        p.setPen(QPen(Qt::black, 1));
        p.setBrush(current ? QColor(255, 230, 0) : QColor(200, 0, 0));
        p.drawRect(QRectF(poly[i] - QPointF(half, half), QSizeF(2 * half, 2 * half)));
        const auto k = static_cast<std::size_t>(i);
        if (k < labels_.size() && !labels_[k].isEmpty())
            halo_text(poly[i] + QPointF(7, 4), labels_[k]);
    }
}

void grid_viewer::paint_colour_bar(QPainter& p) const {
    const QRectF area(width() - colour_bar_width + 8, 14, 16, std::max(20, height() - 28));
    for (int y = 0; y < static_cast<int>(area.height()); ++y) {
        const double f = 1.0 - y / (area.height() - 1.0);
        p.setPen(ramp_colour(f));
        p.drawLine(QPointF(area.left(), area.top() + y), QPointF(area.right(), area.top() + y));
    }
    p.setPen(Qt::black);
    p.setBrush(Qt::NoBrush);
    p.drawRect(area);
    const double span = stretch_.levels.back() - stretch_.levels.front();
    const QFontMetricsF metrics(font());
    for (int i = 0; i <= 4; ++i) {
        const double f = i / 4.0;
        const double y = area.bottom() - f * area.height();
        p.drawLine(QPointF(area.right(), y), QPointF(area.right() + 4, y));
        p.drawText(QPointF(area.right() + 6, y + metrics.ascent() / 2.5),
                   value_label(stretch_value(stretch_, f), span));
    }
}

// A bar of a round length (1, 2 or 5 times a power of ten) about a fifth of the map wide.
void grid_viewer::paint_scale_bar(QPainter& p) const {
    if (units_per_pixel_ <= 0.0) return;
    const QRectF area = map_rect();
    const double want = area.width() / 5.0 * units_per_pixel_;
    const double decade = std::pow(10.0, std::floor(std::log10(want)));
    double length = decade;
    for (double m : {2.0, 5.0})
        if (decade * m <= want) length = decade * m;
    const double pixels = length / units_per_pixel_;
    const QPointF start(area.left() + 12, area.bottom() - 14);
    const QString text =
        length >= 1000.0 ? QString("%1 km").arg(length / 1000.0) : QString("%1 m").arg(length);
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(255, 255, 255, 190));
    p.drawRect(QRectF(start.x() - 6, start.y() - 20, pixels + 12, 28));
    p.setPen(QPen(Qt::black, 2));
    p.drawLine(start, start + QPointF(pixels, 0));
    p.drawLine(start, start + QPointF(0, -5));
    p.drawLine(start + QPointF(pixels, 0), start + QPointF(pixels, -5));
    p.drawText(QRectF(start.x(), start.y() - 20, pixels, 14), Qt::AlignCenter, text);
}

void grid_viewer::zoom_about(QPointF pixel, double factor) {
    if (units_per_pixel_ <= 0.0 || factor <= 0.0) return;
    fitted_ = false;
    const QPointF fixed = to_world(pixel);
    units_per_pixel_ /= factor;
    const QPointF moved = to_world(pixel);
    centre_ += fixed - moved;
    update();
}

void grid_viewer::mousePressEvent(QMouseEvent* event) {
    pressed_ = true;
    dragging_ = false;
    press_pixel_ = last_pixel_ = event->position();
}

void grid_viewer::mouseMoveEvent(QMouseEvent* event) {
    const QPointF pixel = event->position();
    if (pressed_) {
        if (!dragging_ && QLineF(pixel, press_pixel_).length() > click_slop) dragging_ = true;
        if (dragging_) {
            fitted_ = false;
            setCursor(Qt::ClosedHandCursor);
            const double upp = units_per_pixel_ > 0.0 ? units_per_pixel_ : 1.0;
            const QPointF d = pixel - last_pixel_;
            centre_ += QPointF(-d.x() * upp, d.y() * upp);
            update();
        }
        last_pixel_ = pixel;
    }
    const bool inside = map_rect().contains(pixel);
    const QPointF w = to_world(pixel);
    emit pointer_moved(!inside, w.x(), w.y());
    if (inside && !dragging_)
        emit pointer_event(pointer_move, 0, event->modifiers() & Qt::ShiftModifier, w.x(), w.y());
}

void grid_viewer::mouseReleaseEvent(QMouseEvent* event) {
    const bool was_click = pressed_ && !dragging_;
    pressed_ = dragging_ = false;
    unsetCursor();
    if (!was_click || !map_rect().contains(event->position())) return;
    const int button = event->button() == Qt::LeftButton     ? 1
                       : event->button() == Qt::RightButton  ? 2
                       : event->button() == Qt::MiddleButton ? 4
                                                             : 0;
    const QPointF w = to_world(event->position());
    emit pointer_event(pointer_click, button, event->modifiers() & Qt::ShiftModifier, w.x(), w.y());
}

void grid_viewer::wheelEvent(QWheelEvent* event) {
    const double notches = event->angleDelta().y() / 120.0;
    if (notches == 0.0) return;
    zoom_about(event->position(), std::pow(wheel_step, notches));
    event->accept();
}

void grid_viewer::leaveEvent(QEvent*) {
    emit pointer_moved(true, 0.0, 0.0);
}

void grid_viewer::keyPressEvent(QKeyEvent* event) {
    const QPointF centre = map_rect().center();
    switch (event->key()) {
        case Qt::Key_Home:
            zoom_full();
            break;
        case Qt::Key_Plus:
        case Qt::Key_Equal:
            zoom_about(centre, wheel_step);
            break;
        case Qt::Key_Minus:
            zoom_about(centre, 1.0 / wheel_step);
            break;
        default:
            QWidget::keyPressEvent(event);
    }
}

void grid_viewer::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    if (fitted_)
        zoom_to_box(fitted_box_);
    else if (units_per_pixel_ <= 0.0)
        zoom_full();
}

}  // namespace trensil
