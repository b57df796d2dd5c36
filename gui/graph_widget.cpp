#include "graph_widget.h"

#include <QFontMetricsF>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>
#include <limits>

namespace trensil {

namespace {
constexpr double unset_axis = -99999.0;

QColor from_bgr(std::int32_t c) {
    return QColor(c & 0xff, (c >> 8) & 0xff, (c >> 16) & 0xff);
}

// The tick step rounded to three significant digits, so that ticks fall on clean values even
// where the axis was rounded in single precision far from the origin.
double clean_step(double step) {
    if (!(step > 0.0)) return step;
    const double scale = std::pow(10.0, std::floor(std::log10(step)) - 2.0);
    return std::round(step / scale) * scale;
}

// Tick labels: as many decimals as the step needs.
QString tick_label(double v, double step) {
    const int decimals = std::clamp(static_cast<int>(-std::floor(std::log10(step))) + 1, 0, 6);
    const double rounded = std::round(v / step) * step;
    QString text = QString::number(rounded, 'f', step >= 1.0 ? 0 : decimals);
    if (text == "-0") text = "0";
    return text;
}
}  // namespace

graph_widget::graph_widget(QWidget* parent) : QWidget(parent) {
    setMouseTracking(true);
    setAttribute(Qt::WA_OpaquePaintEvent);
    QFont f("Arial");
    f.setPointSize(8);
    setFont(f);
    setMinimumSize(120, 60);
}

void graph_widget::clear_data() {
    series_ = plot_data{};
    objects_.clear();
}

void graph_widget::clear_objects() {
    objects_.clear();
}

void graph_widget::load_data(const plot_data& data) {
    series_ = data;
}

void graph_widget::redraw() {
    update();
}

void graph_widget::draw_line(float x1, float y1, float x2, float y2, std::int32_t colour,
                             int width) {
    object o;
    o.what = object::line;
    o.points = {QPointF(x1, y1), QPointF(x2, y2)};
    o.colour = colour;
    o.width = width;
    objects_.push_back(std::move(o));
}

void graph_widget::draw_marker(float x, float y, int /*style*/, std::int32_t colour) {
    object o;
    o.what = object::marker;
    o.points = {QPointF(x, y)};
    o.colour = colour;
    o.size = markersize;
    objects_.push_back(std::move(o));
}

void graph_widget::draw_polygon(int count, const float* x, const float* y, std::int32_t line_colour,
                                std::int32_t fill_colour, int width) {
    object o;
    o.what = object::polygon;
    o.points.reserve(static_cast<std::size_t>(std::max(count, 0)));
    for (int i = 0; i < count; ++i) o.points.emplace_back(x[i], y[i]);
    o.colour = line_colour;
    o.fill = fill_colour;
    o.width = width;
    objects_.push_back(std::move(o));
}

void graph_widget::draw_text(int /*mode*/, float x, float y, const std::string& text) {
    object o;
    o.what = object::text;
    o.points = {QPointF(x, y)};
    o.label = QString::fromStdString(text);
    objects_.push_back(std::move(o));
}

int graph_widget::polygon_count() const {
    return static_cast<int>(std::count_if(objects_.begin(), objects_.end(), [](const object& o) {
        return o.what == object::polygon;
    }));
}

void graph_widget::axes(double& x0, double& x1, double& y0, double& y1) const {
    x0 = xaxismin, x1 = xaxismax, y0 = yaxismin, y1 = yaxismax;
    const bool x_set = x0 != unset_axis && x1 != unset_axis && x1 > x0;
    const bool y_set = y0 != unset_axis && y1 != unset_axis && y1 > y0;
    if (x_set && y_set) return;
    double lx = 1e300, hx = -1e300, ly = 1e300, hy = -1e300;
    for (int r = 0; r < series_.rows(); ++r) {
        const auto i = static_cast<std::size_t>(r);
        lx = std::min(lx, series_.x[i]);
        hx = std::max(hx, series_.x[i]);
        for (const auto& s : series_.y)
            if (!std::isnan(s[i])) ly = std::min(ly, s[i]), hy = std::max(hy, s[i]);
    }
    if (!x_set) x0 = lx < hx ? lx : 0.0, x1 = lx < hx ? hx : 1.0;
    if (!y_set) y0 = ly < hy ? ly : 0.0, y1 = ly < hy ? hy : 1.0;
}

QRectF graph_widget::plot_rect() const {
    const QFontMetricsF fm(font());
    const double title_h = title.empty() ? 4.0 : fm.height() + 6.0;
    const double left = display_y_axis ? fm.horizontalAdvance("-0000000.0") + 8.0 : 6.0;
    const double bottom = display_x_axis ? fm.height() + 10.0 : 6.0;
    // Room on the right for half of the last distance label.
    const double right = display_x_axis ? fm.horizontalAdvance("000000") / 2.0 + 6.0 : 6.0;
    QRectF r(left, title_h, std::max(10.0, QWidget::width() - left - right),
             std::max(10.0, QWidget::height() - title_h - bottom));
    if (equal_scales) {
        double x0, x1, y0, y1;
        axes(x0, x1, y0, y1);
        const double sx = r.width() / (x1 - x0);
        const double sy = r.height() / (y1 - y0);
        const double s = std::min(sx, sy);
        const double w = (x1 - x0) * s, h = (y1 - y0) * s;
        r = QRectF(r.left() + (r.width() - w) / 2.0, r.top() + (r.height() - h) / 2.0, w, h);
    }
    return r;
}

graph_widget::pixel_frame graph_widget::frame() const {
    double x0, x1, y0, y1;
    axes(x0, x1, y0, y1);
    pixel_frame f;
    f.plot = plot_rect();
    f.x0 = x0;
    f.y0 = y0;
    f.sx = f.plot.width() / (x1 - x0);
    f.sy = f.plot.height() / (y1 - y0);
    return f;
}

QPointF graph_widget::to_pixel(double x, double y) const {
    return frame()(x, y);
}

QPointF graph_widget::to_world(QPointF pixel) const {
    double x0, x1, y0, y1;
    axes(x0, x1, y0, y1);
    const QRectF r = plot_rect();
    return {x0 + (pixel.x() - r.left()) / r.width() * (x1 - x0),
            y0 + (r.bottom() - pixel.y()) / r.height() * (y1 - y0)};
}

float graph_widget::y_scale() const {
    double x0, x1, y0, y1;
    axes(x0, x1, y0, y1);
    return static_cast<float>(plot_rect().height() / (y1 - y0));
}

float graph_widget::font_height() const {
    return static_cast<float>(QFontMetricsF(font()).height());
}

std::vector<double> graph_widget::tick_values(double lo, double hi, double step) {
    std::vector<double> values;
    step = clean_step(step);
    if (!(step > 0.0) || (hi - lo) / step > 200.0) return values;
    // An axis rounded in single precision may end a hair short of its last tick: a tick within
    // a ten-thousandth of a step of either end is still drawn.
    for (double v = std::ceil(lo / step - 1e-4) * step; v <= hi + step * 1e-4; v += step)
        values.push_back(v);
    return values;
}

int graph_widget::polygon_at(QPointF pixel) const {
    if (!plot_rect().contains(pixel)) return 0;
    const QPointF w = to_world(pixel);
    int number = polygon_count();
    for (auto o = objects_.rbegin(); o != objects_.rend(); ++o) {
        if (o->what != object::polygon) continue;
        QPolygonF poly;
        for (const QPointF& p : o->points) poly << p;
        if (poly.containsPoint(w, Qt::OddEvenFill)) return number;
        --number;
    }
    return 0;
}

void graph_widget::paintEvent(QPaintEvent*) {
    QPainter p(this);
    paint_graph(p);
}

void graph_widget::paint_graph(QPainter& p) const {
    p.fillRect(QRectF(0, 0, QWidget::width(), QWidget::height()), Qt::white);
    const pixel_frame f = frame();
    const QRectF& plot = f.plot;
    p.setFont(font());
    if (!title.empty()) {
        p.setPen(Qt::black);
        p.drawText(QRectF(0, 2, QWidget::width(), plot.top() - 2), Qt::AlignCenter,
                   QString::fromStdString(title));
    }
    paint_axes(p, f);
    p.save();
    p.setClipRect(plot);
    paint_series(p, f);
    paint_objects(p, f);
    p.restore();
    p.setPen(QColor(96, 96, 96));
    p.setBrush(Qt::NoBrush);
    p.drawRect(plot);
}

void graph_widget::paint_axes(QPainter& p, const pixel_frame& f) const {
    const QRectF& plot = f.plot;
    const double x0 = f.x0, y0 = f.y0;
    const double x1 = x0 + plot.width() / f.sx, y1 = y0 + plot.height() / f.sy;
    const QFontMetricsF fm(font());
    p.setPen(QColor(210, 210, 210));
    auto ticks = [](double lo, double hi, double step, auto&& each) {
        step = clean_step(step);
        for (double v : tick_values(lo, hi, step)) each(v, step);
    };
    double last_label_right = -1e300;
    ticks(x0, x1, x_tick_step, [&](double v, double step) {
        const double px = f(v, y0).x();
        p.setPen(QColor(225, 225, 225));
        p.drawLine(QPointF(px, plot.top()), QPointF(px, plot.bottom()));
        if (display_x_axis) {
            // Labels that would run into the one before are left out.
            const QString t = tick_label(v, step);
            const double w = fm.horizontalAdvance(t);
            if (px - w / 2.0 < last_label_right + 6.0) return;
            last_label_right = px + w / 2.0;
            p.setPen(Qt::black);
            p.drawText(QPointF(px - w / 2.0, plot.bottom() + fm.ascent() + 4), t);
        }
    });
    ticks(y0, y1, y_tick_step, [&](double v, double step) {
        const double py = f(x0, v).y();
        p.setPen(QColor(225, 225, 225));
        p.drawLine(QPointF(plot.left(), py), QPointF(plot.right(), py));
        if (display_y_axis) {
            p.setPen(Qt::black);
            const QString t = tick_label(v, step);
            p.drawText(QPointF(plot.left() - fm.horizontalAdvance(t) - 4, py + fm.ascent() / 2.5),
                       t);
        }
    });
}

void graph_widget::paint_series(QPainter& p, const pixel_frame& f) const {
    static const QColor colours[] = {Qt::black, Qt::red, Qt::darkGreen, Qt::blue};
    p.setRenderHint(QPainter::Antialiasing, false);
    std::vector<QPointF> piece;
    piece.reserve(series_.x.size());
    for (std::size_t s = 0; s < series_.y.size(); ++s) {
        // A one-pixel (cosmetic) pen: wider pens take the painter's stroker, which made the
        // curves most of the cost of a redraw.
        p.setPen(QPen(colours[s % 4], 0));
        const auto& ys = series_.y[s];
        piece.clear();
        auto flush = [&] {
            if (piece.size() > 1) p.drawPolyline(piece.data(), static_cast<int>(piece.size()));
            piece.clear();
        };
        // Stations that fall in one pixel column are drawn as the first, lowest, highest and
        // last of them, in order: the same picture from far fewer points on long lines.
        long column = std::numeric_limits<long>::min();
        std::size_t first = 0;
        std::size_t low = 0, high = 0;
        auto close_column = [&](std::size_t last) {
            const std::size_t a = std::min(low, high), b = std::max(low, high);
            std::size_t shown = std::numeric_limits<std::size_t>::max();
            for (std::size_t k : {first, a, b, last}) {
                if (k == shown) continue;
                piece.push_back(f(series_.x[k], ys[k]));
                shown = k;
            }
        };
        std::size_t previous = 0;
        bool open = false;
        for (std::size_t i = 0; i < series_.x.size(); ++i) {
            if (std::isnan(ys[i])) {
                if (open) close_column(previous);
                open = false;
                column = std::numeric_limits<long>::min();
                flush();
                continue;
            }
            const long c = std::lround(std::floor(f(series_.x[i], 0.0).x()));
            if (!open || c != column) {
                if (open) close_column(previous);
                open = true;
                column = c;
                first = low = high = i;
            } else {
                if (ys[i] < ys[low]) low = i;
                if (ys[i] > ys[high]) high = i;
            }
            previous = i;
        }
        if (open) close_column(previous);
        flush();
    }
}

void graph_widget::paint_objects(QPainter& p, const pixel_frame& f) const {
    p.setRenderHint(QPainter::Antialiasing, true);
    for (const object& o : objects_) {
        switch (o.what) {
            case object::line:
                p.setPen(QPen(from_bgr(o.colour), std::max(o.width, 1)));
                p.drawLine(f(o.points[0].x(), o.points[0].y()),
                           f(o.points[1].x(), o.points[1].y()));
                break;
            case object::marker: {
                const QPointF c = f(o.points[0].x(), o.points[0].y());
                const double h = std::max(2.0, o.size / 3.0);
                p.setPen(QPen(from_bgr(o.colour), 1.2));
                p.drawLine(QPointF(c.x() - h, c.y()), QPointF(c.x() + h, c.y()));
                p.drawLine(QPointF(c.x(), c.y() - h), QPointF(c.x(), c.y() + h));
                break;
            }
            case object::polygon: {
                QPolygonF poly;
                for (const QPointF& w : o.points) poly << f(w.x(), w.y());
                p.setPen(o.width > 0 ? QPen(from_bgr(o.colour), o.width)
                                     : QPen(from_bgr(o.colour), 0));
                p.setBrush(o.fill == no_fill ? QBrush(Qt::NoBrush) : QBrush(from_bgr(o.fill)));
                p.drawPolygon(poly);
                p.setBrush(Qt::NoBrush);
                break;
            }
            case object::text:
                p.setPen(Qt::black);
                p.drawText(f(o.points[0].x(), o.points[0].y()), o.label);
                break;
        }
    }
}

void graph_widget::mouseMoveEvent(QMouseEvent* event) {
    const QPointF pos = event->position();
    const QPointF w = to_world(pos);
    emit pointer_moved(!plot_rect().contains(pos), w.x(), w.y());
}

void graph_widget::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    const int hit = polygon_at(event->position());
    if (hit > 0) emit object_clicked(hit);
}

void graph_widget::mouseDoubleClickEvent(QMouseEvent*) {
    emit double_clicked();
}

}  // namespace trensil
