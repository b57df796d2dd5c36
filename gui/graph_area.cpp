#include "graph_area.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QShortcut>
#include <QVBoxLayout>
#include <cmath>

#include "workspace/body_list.h"

namespace trensil {

namespace {
// The width of a graph's zoom and pan bars.
constexpr int bar_width = 14;

float twips(const modelling_workspace& ws, double pixels) {
    return static_cast<float>(pixels) * ws.pointer.twips_per_pixel;
}

// A bar that works as a spin: one step up or down, then back to 0.
QScrollBar* spin_bar(const QString& name) {
    auto* bar = new QScrollBar(Qt::Vertical);
    bar->setObjectName(name);
    bar->setRange(-1, 1);
    bar->setValue(0);
    bar->setFixedWidth(bar_width);
    return bar;
}

// A splitter handle: a thin strip that moves the boundary under it when dragged.
class splitter_handle : public QWidget {
public:
    splitter_handle(modelling_workspace& ws, splitter_id id, const QString& name, QWidget* parent)
        : QWidget(parent), ws_(ws), id_(id) {
        setObjectName(name);
        setCursor(Qt::SizeVerCursor);
        setToolTip("Drag to share the height between the graphs");
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter p(this);
        p.setPen(QColor(170, 170, 170));
        const int y = height() / 2;
        p.drawLine(width() / 2 - 20, y, width() / 2 + 20, y);
    }
    void mousePressEvent(QMouseEvent* e) override {
        if (e->button() == Qt::LeftButton) splitter_down(ws_, id_, twips(ws_, e->position().y()));
    }
    void mouseMoveEvent(QMouseEvent* e) override {
        splitter_move(ws_, id_, twips(ws_, e->position().y()));
    }
    void mouseReleaseEvent(QMouseEvent* e) override {
        if (e->button() == Qt::LeftButton) splitter_up(ws_, id_);
    }

private:
    modelling_workspace& ws_;
    splitter_id id_;
};

// One of the two inversion limit markers: a small triangle over the window's end.
class limit_marker : public QWidget {
public:
    limit_marker(modelling_workspace& ws, int index, QWidget* parent)
        : QWidget(parent), ws_(ws), index_(index) {
        setObjectName(QString("Image_inversion_limit_%1").arg(index));
        setCursor(Qt::SizeHorCursor);
        setToolTip(index == 0 ? "Drag to move the start of the inversion window"
                              : "Drag to move the end of the inversion window");
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter p(this);
        p.setRenderHint(QPainter::Antialiasing);
        p.setPen(Qt::NoPen);
        p.setBrush(QColor(0, 0, 255));
        const QPointF tip(width() / 2.0, height() - 1.0);
        p.drawPolygon(QPolygonF{{0.0, 1.0}, {width() - 0.0, 1.0}, tip});
    }
    void mousePressEvent(QMouseEvent* e) override {
        if (e->button() == Qt::LeftButton)
            limit_marker_down(ws_, index_, twips(ws_, e->position().x()));
    }
    void mouseMoveEvent(QMouseEvent* e) override {
        limit_marker_move(ws_, index_, twips(ws_, e->position().x()));
    }
    void mouseReleaseEvent(QMouseEvent* e) override {
        if (e->button() == Qt::LeftButton) limit_marker_up(ws_, index_);
    }

private:
    modelling_workspace& ws_;
    int index_;
};
}  // namespace

graph_area::graph_area(modelling_workspace& ws, QWidget* parent) : QWidget(parent), ws_(ws) {
    setObjectName("graph_area");
    setMinimumHeight(300);

    QFrame* mag = frame("Frame_mag_profiles");
    graph_row(0, mag);
    graph_row(1, mag);
    new splitter_handle(ws_, splitter_id::mag, "Image_splitter_mag", mag);
    QFrame* grav = frame("Frame_grav_profiles");
    graph_row(2, grav);
    graph_row(3, grav);
    new splitter_handle(ws_, splitter_id::grav, "Image_splitter_grav", grav);
    // Gravity is shown once a model with gravity data is read.
    grav->hide();

    QFrame* section = frame("Frame_section");
    auto* strip = new QWidget(section);
    strip->setObjectName("Picture_inversion_limits");
    for (int i = 0; i < 2; ++i) new limit_marker(ws_, i, strip);
    graph_row(section_graph, section);
    graphs_[section_graph]->display_legend = true;

    QFrame* plan_frame = frame("Frame_plan");
    plan_ = new graph_widget(plan_frame);
    plan_->setObjectName("zngraph_plan");
    plan_->setFocusPolicy(Qt::ClickFocus);
    auto* pl = new QVBoxLayout(plan_frame);
    pl->setContentsMargins(0, 0, 0, 0);
    pl->addWidget(plan_);
    connect(plan_, &graph_widget::object_clicked, this,
            [this](int n) { object_click_on_plan(ws_, n); });
    connect(plan_, &graph_widget::pointer_moved, this,
            [this](bool outside, double x, double y) { pointer_move_on_plan(ws_, outside, x, y); });
    plan_frame->hide();

    for (int i : {0, 1})
        new splitter_handle(ws_, i == 0 ? splitter_id::frames : splitter_id::section,
                            QString("Image_splitter_%1").arg(i), this);

    // Delete on a picked body (the graphs take the focus when clicked) asks, then deletes it.
    auto* remove = new QShortcut(QKeySequence::Delete, this);
    remove->setContext(Qt::WidgetWithChildrenShortcut);
    connect(remove, &QShortcut::activated, this, [this] { delete_picked_body(ws_); });
}

QFrame* graph_area::frame(const QString& name) {
    auto* f = new QFrame(this);
    f->setObjectName(name);
    return f;
}

QWidget* graph_area::graph_row(int i, QWidget* parent) {
    auto* row = new QWidget(parent);
    row->setObjectName(QString("row_zngraph_model_%1").arg(i));
    auto* rl = new QHBoxLayout(row);
    rl->setContentsMargins(0, 0, 0, 0);
    rl->setSpacing(1);
    auto* g = new graph_widget;
    g->setObjectName(QString("zngraph_model_%1").arg(i));
    g->setFocusPolicy(Qt::ClickFocus);
    graphs_[static_cast<std::size_t>(i)] = g;
    rl->addWidget(g, 1);
    auto* bars = new QVBoxLayout;
    QScrollBar* zoom = spin_bar(QString("VScroll_zoom_%1").arg(i));
    QScrollBar* pan = spin_bar(QString("VScroll_pan_%1").arg(i));
    // Up on the bar is a step up: zoom in, move the view up.
    connect(zoom, &QScrollBar::valueChanged, this,
            [this, i](int v) { vscroll_zoom_changed(ws_, i, -v); });
    connect(pan, &QScrollBar::valueChanged, this,
            [this, i](int v) { vscroll_pan_changed(ws_, i, -v); });
    bars->addWidget(zoom, 1);
    bars->addWidget(pan, 1);
    rl->addLayout(bars);
    connect(g, &graph_widget::pointer_moved, this, [this, i](bool outside, double x, double y) {
        pointer_move_on_model(ws_, i, outside, x, y);
    });
    connect(g, &graph_widget::object_clicked, this,
            [this, i](int n) { object_click_on_model(ws_, i, n); });
    connect(g, &graph_widget::double_clicked, this, [this, i] { double_click_on_model(ws_, i); });
    return row;
}

int graph_area::half_marker() const {
    return static_cast<int>(
        std::lround(ws_.pointer.limits.marker_width / ws_.pointer.twips_per_pixel / 2.0f));
}

bool graph_area::place(const QString& name, const QRect& rect) {
    if (name.startsWith("zngraph_model_")) {
        if (auto* row = findChild<QWidget*>("row_" + name)) row->setGeometry(rect);
        return true;
    }
    if (name == "Picture_inversion_limits") {
        if (auto* strip = findChild<QWidget*>(name))
            strip->setGeometry(rect.adjusted(-half_marker(), 0, half_marker(), 0));
        return true;
    }
    if (name.startsWith("Image_inversion_limit_")) {
        if (auto* marker = findChild<QWidget*>(name))
            marker->setGeometry(rect.translated(half_marker(), 0));
        return true;
    }
    auto* part = findChild<QWidget*>(name);
    if (!part) return false;
    part->setGeometry(rect);
    if (name.startsWith("Image_splitter")) part->raise();
    return true;
}

void graph_area::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    graph_area_resized(ws_, twips(ws_, width()), twips(ws_, height()));
}

}  // namespace trensil
