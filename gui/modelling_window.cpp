#include "modelling_window.h"

#include <QAction>
#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QFormLayout>
#include <QFrame>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QStatusBar>
#include <QTabWidget>
#include <QVBoxLayout>
#include <chrono>
#include <utility>

#include <cmath>

#include "body_frame.h"
#include "body_menus.h"
#include "body_slider_frame.h"
#include "exports/bitmap_file.h"
#include "io/profile_data_export.h"
#include "recovery_support.h"
#include "support/number_format.h"
#include "transform_dialog.h"
#include "workspace/body_list.h"
#include "workspace/body_table.h"
#include "workspace/model_edit.h"
#include "workspace/transform_definition.h"

namespace trensil {

namespace {
QLineEdit* field(QFormLayout* form, const QString& name, const QString& label) {
    auto* edit = named(new QLineEdit, name);
    form->addRow(label, edit);
    return edit;
}

}  // namespace

modelling_window::modelling_window(platform& ui, settings_store& settings, bool opened_from_project,
                                   QWidget* parent)
    : QMainWindow(parent), ws_(ui, settings), inversion_panel_(ws_) {
    setObjectName("Form_trensil");
    setWindowTitle("Trensil");
    ws_.view = this;
    ws_.inversion_panel = &inversion_panel_;
    ws_.opened_from_project = opened_from_project;

    build_menus();
    auto* central = new QWidget;
    auto* layout = new QHBoxLayout(central);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->addWidget(build_tabs());
    layout->addWidget(build_graphs(), 1);
    setCentralWidget(central);

    for (std::size_t i = 0; i < status_.size(); ++i) {
        status_[i] = named(new QLabel, QString("StatusBar_panel_%1").arg(i + 1));
        status_[i]->setMinimumWidth(i == 0 ? 220 : 90);
        statusBar()->addWidget(status_[i], i == 0 ? 2 : 1);
    }
    statusBar()->addPermanentWidget(
        named(new QLabel("Format field geometry"), "Label_field_geometry"));
    statusBar()->setObjectName("StatusBar");

    resize_timer_.setObjectName("Timer_resize");
    resize_timer_.setSingleShot(true);
    resize_timer_.setInterval(150);
    connect(&resize_timer_, &QTimer::timeout, this, [this] { timer_resize(ws_); });

    for (std::size_t i = 0; i < graphs_.size(); ++i) ws_.graphs[i] = graphs_[i];
    ws_.plan = plan_;
    resize(1280, 860);
    form_load(ws_);

    if (recovery_session* session = recovery_session_in_use()) {
        start_model_autosave(ws_, *session);
        autosave_timer_.setObjectName("Timer_autosave");
        autosave_timer_.setInterval(250);
        connect(&autosave_timer_, &QTimer::timeout, this,
                [this] { model_autosave_tick(ws_, std::chrono::steady_clock::now()); });
        autosave_timer_.start();
    }
}

modelling_window::~modelling_window() = default;

void modelling_window::build_menus() {
    QMenu* file = menuBar()->addMenu("&File");
    file->setObjectName("menu_file");
    auto add = [this](QMenu* menu, const QString& name, const QString& caption,
                      auto handler) -> QAction* {
        QAction* action = menu->addAction(caption);
        action->setObjectName(name);
        action->setParent(this);
        connect(action, &QAction::triggered, this, handler);
        return action;
    };
    add(file, "menu_open_model_0", "Read Data Format and Model Definitions", [this] {
        menu_open_model(ws_, 0);
    })->setShortcut(QKeySequence::Open);
    add(file, "menu_open_model_1", "Save Data Format and Model Definitions", [this] {
        save_model_file();
    })->setShortcut(QKeySequence::Save);
    file->addSeparator();
    add(file, "menu_open_model_3", "Read Model Defintions", [this] { menu_open_model(ws_, 3); });
    file->addSeparator();
    add(file, "menu_export_data", "Export Profile Data",
        [this] { export_profile_data(ws_.model, ws_.ui); });
    add(file, "menu_save_working_directory", "Save working directory",
        [this] { save_working_directory(ws_); });
    add(file, "menu_return_working_directory", "Return to working directory",
        [this] { return_to_working_directory(ws_); });
    file->addSeparator();
    add(file, "menu_exit", "Exit", [this] { close(); })->setShortcut(QKeySequence::Quit);

    QMenu* edit = menuBar()->addMenu("&Edit");
    edit->menuAction()->setObjectName("menu_edit");
    edit->menuAction()->setParent(this);
    add(edit, "menu_undo", "Undo", [this] { menu_undo(ws_); })->setShortcut(QKeySequence::Undo);
    add(edit, "menu_redo", "Redo", [this] {
        menu_redo(ws_);
    })->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z));

    QMenu* bodies = menuBar()->addMenu("&Bodies");
    bodies->menuAction()->setObjectName("menu_bodies");
    bodies->menuAction()->setParent(this);
    add(bodies, "menu_save_body_defaults", "Save current body parameters as default",
        [this] { save_body_defaults(ws_); });
    add_body_list_menus(bodies, ws_, this);
    QMenu* model = menuBar()->addMenu("&Model");
    model->menuAction()->setObjectName("menu_model");
    model->menuAction()->setParent(this);
    add(model, "menu_reset_graph_scale", "Reset Graph Scale",
        [this] { command_reset_graph_scale(ws_); });

    QMenu* view = menuBar()->addMenu("&View");
    view->menuAction()->setObjectName("menu_view");
    view->menuAction()->setParent(this);
    for (int i = 0; i < 2; ++i) {
        QAction* mode =
            add(view, QString("menu_view_mode_%1").arg(i), i == 0 ? "Section View" : "Plan View",
                [this, i] { menu_view_mode(ws_, i); });
        mode->setCheckable(true);
    }
    view->addSeparator();
    QAction* axes =
        add(view, "menu_display_axes", "Display Axes", [this] { menu_display_axes(ws_); });
    axes->setCheckable(true);
    axes->setChecked(true);
    QAction* highlight = add(view, "menu_highlight_on", "Highlight Selected Body",
                             [this] { menu_highlight_on(ws_); });
    highlight->setCheckable(true);
}

void modelling_window::connect_field(QLineEdit* edit) {
    const std::string control = edit->objectName().toStdString();
    connect(edit, &QLineEdit::textEdited, this,
            [this, control] { model_field_changed(ws_, control); });
}

QWidget* modelling_window::build_tabs() {
    tabs_ = named(new QTabWidget, "Tab_model");
    tabs_->setFixedWidth(440);

    auto* definitions = new QWidget;
    auto* dl = new QVBoxLayout(definitions);
    auto* data_box = named(new QGroupBox("Data file"), "Frame_qvx_data_file_definitions");
    auto* df = new QFormLayout(data_box);
    field(df, "Text_MAGINV_data_file", "File")->setReadOnly(true);
    field(df, "Text_MAGINV_nhead", "First data line");
    field(df, "Text_MAGINV_nstep", "Every n-th line");
    field(df, "Text_MAGINV_xpos", "East column");
    field(df, "Text_MAGINV_ypos", "North column");
    field(df, "Text_MAGINV_zpos", "Sensor column");
    field(df, "Text_MAGINV_dtm", "Ground column");
    field(df, "Text_MAGINV_magpos", "Magnetics column");
    field(df, "Text_MAGINV_gravpos", "Gravity column");
    field(df, "Text_MAGINV_station_spacing", "Station spacing");
    field(df, "Text_number_locations", "Stations")->setReadOnly(true);
    auto* transform =
        named(new QPushButton("Define Coordinate Transform"), "Command_define_transform");
    connect(transform, &QPushButton::clicked, this, [this] { define_coordinate_transform(); });
    df->addRow(transform);
    dl->addWidget(data_box);
    auto* field_box = named(new QGroupBox("Earth's field and heights"), "Frame_earth_field");
    auto* ff = new QFormLayout(field_box);
    field(ff, "Text_mag_intensity", "Intensity (nT)");
    field(ff, "Text_mag_inclination", "Inclination");
    field(ff, "Text_mag_declination", "Declination");
    field(ff, "Text_MAGINV_sensor_offset", "Sensor height");
    field(ff, "Text_MAGINV_topo", "Topography");
    auto* exact = named(new QCheckBox("Exact field geometry"), "Check_exact_field_geometry");
    exact->setToolTip(
        "Compute the physical response of every body, with the field resolved across its own "
        "strike, instead of the model format's formulas");
    connect(exact, &QCheckBox::clicked, this, [this] { check_exact_field_geometry(ws_); });
    ff->addRow(exact);
    dl->addWidget(field_box);
    dl->addStretch();
    tabs_->addTab(definitions, "Definitions");

    auto* bodies = new QWidget;
    auto* bl = new QVBoxLayout(bodies);
    auto* body_box = new body_frame(ws_);
    connect(body_box, &body_frame::type_chosen, this,
            [this](int type) { combo_model_type_selected(ws_, type); });
    bl->addWidget(body_box);
    bl->addWidget(build_body_switches(ws_));
    auto* label = named(new QCheckBox("Show body label"), "Check_show_body_label");
    connect(label, &QCheckBox::clicked, this, [this] { check_show_body_label(ws_); });
    bl->addWidget(label);
    auto* toggle = named(new QPushButton("Perform Inversion"), "Command_toggle_invert_body");
    connect(toggle, &QPushButton::clicked, this, [this] { command_toggle_invert_body(ws_); });
    bl->addWidget(toggle);
    bl->addWidget(new body_slider_frame(ws_));
    bl->addWidget(build_inversion_panel());
    bl->addStretch();
    // The body's table, fields, sliders and inversion panel are taller than a small window.
    auto* scroll = new QScrollArea;
    scroll->setWidget(bodies);
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    tabs_->addTab(scroll, "Bodies");

    auto* display = new QWidget;
    auto* xl = new QVBoxLayout(display);
    auto* xf = new QFormLayout;
    field(xf, "Text_profile_grid_spacing", "Profile grid spacing");
    field(xf, "Text_depth_grid_spacing", "Depth grid spacing");
    field(xf, "Text_finite_body_left_clip", "Finite body left clip");
    field(xf, "Text_finite_body_right_clip", "Finite body right clip");
    field(xf, "Text_infinite_body_length", "Infinite body length");
    field(xf, "Text_MAGINV_residual", "Residual filter");
    field(xf, "Text_VG_filter_step", "Gradient filter step");
    field(xf, "Text_VG_filter_width", "Gradient filter width");
    xl->addLayout(xf);
    auto* total = named(new QCheckBox("Display total gradient"), "Check_display_total_gradient");
    connect(total, &QCheckBox::clicked, this, [this] { check_display_total_gradient(ws_); });
    xl->addWidget(total);
    auto* aspect = named(new QCheckBox("Maintain aspect ratio"), "Check_maintain_aspect_ratio");
    connect(aspect, &QCheckBox::clicked, this, [this] { check_maintain_aspect_ratio(ws_); });
    xl->addWidget(aspect);
    xl->addStretch();
    tabs_->addTab(display, "Display");

    for (QLineEdit* edit : tabs_->findChildren<QLineEdit*>()) connect_field(edit);
    connect(tabs_, &QTabWidget::currentChanged, this, [this](int index) {
        const int old = shown_tab_;
        shown_tab_ = index;
        if (!tab_model_changing(ws_, old, index)) {
            const QSignalBlocker block(tabs_);
            tabs_->setCurrentIndex(0);
            shown_tab_ = 0;
        }
    });
    return tabs_;
}

// The inversion panel: it takes the slider frame's place when Command_toggle_invert_body asks.
QWidget* modelling_window::build_inversion_panel() {
    auto* panel = named(new QGroupBox("Inversion"), "Frame_inversion");
    auto* pl = new QVBoxLayout(panel);
    panel->hide();

    auto* form = new QFormLayout;
    field(form, "Text_max_iterations", "Max Iterations");
    auto* type = named(new QComboBox, "Combo_invert");
    type->addItems({"Magnetics", "Gravity"});
    connect(type, &QComboBox::activated, this, [this] { combo_invert_selected(ws_); });
    form->addRow("Data", type);
    auto* solver = named(new QComboBox, "Combo_solver");
    solver->addItems({"Coordinate Descent", "Damped Least Squares"});
    solver->setToolTip(
        "Damped least squares fits all free parameters at once and reports how "
        "well each is determined");
    connect(solver, &QComboBox::activated, this, [this] { combo_solver_selected(ws_); });
    form->addRow("Solver", solver);
    // The least squares' own choices, enabled while it is chosen.
    for (const auto& [name, caption] : {std::pair{"Text_noise_mag", "Noise (nT)"},
                                        std::pair{"Text_noise_grav", "Noise (mGal)"}}) {
        QLineEdit* noise = field(form, name, caption);
        noise->setPlaceholderText("from the data");
        noise->setEnabled(false);
    }
    pl->addLayout(form);
    auto* mode = named(new QCheckBox("Invert Vertical Grad"), "Check_inversion_mode");
    connect(mode, &QCheckBox::clicked, this, [this] { check_inversion_mode_clicked(ws_); });
    pl->addWidget(mode);
    for (const auto& [name, caption] : {std::pair{"Check_joint_fit", "Joint Magnetics and Gravity"},
                                        std::pair{"Check_robust_fit", "Robust (Huber) Loss"}}) {
        auto* check = named(new QCheckBox(caption), name);
        check->setEnabled(false);
        pl->addWidget(check);
    }

    auto* invert = new QHBoxLayout;
    for (int item = 0; item <= 1; ++item) {
        auto* b = named(new QPushButton(item == 0 ? "Invert Current Body" : "Invert Entire Model"),
                        QString("Command_invert_%1").arg(item));
        b->setEnabled(false);
        connect(b, &QPushButton::clicked, this, [this, item] { command_invert(ws_, item); });
        invert->addWidget(b);
    }
    pl->addLayout(invert);

    auto* misfit = new QFormLayout;
    field(misfit, "Text_MAGINV_misfit_0", "Initial Misfit")->setReadOnly(true);
    field(misfit, "Text_MAGINV_misfit_1", "Final Misfit")->setReadOnly(true);
    pl->addLayout(misfit);

    auto* run = new QHBoxLayout;
    auto* iterations = named(new QLineEdit, "Text_num_iterations");
    iterations->setReadOnly(true);
    iterations->setToolTip("Iterations done");
    iterations->hide();
    run->addWidget(iterations);
    auto* stop = named(new QPushButton("Stop Inversion"), "Command_stop_inversion");
    connect(stop, &QPushButton::clicked, this, [this] { command_stop_inversion(ws_); });
    stop->hide();
    run->addWidget(stop);
    pl->addLayout(run);

    auto way_back = [this, pl](const QString& name, const QString& caption, auto handler) {
        auto* b = named(new QPushButton(caption), name);
        b->setEnabled(false);
        connect(b, &QPushButton::clicked, this, handler);
        pl->addWidget(b);
    };
    way_back("Command_reject_changes", "Reject Changes", [this] { command_reject_changes(ws_); });
    way_back("Command_restore_best", "Restore Best Model", [this] { command_restore_best(ws_); });
    auto* status = named(new QLabel, "Label_status");
    status->hide();
    pl->addWidget(status);
    // A least-squares run's findings: a box of its own height that scrolls, so that a model of
    // many free parameters does not stretch the panel.
    auto* summary = named(new QPlainTextEdit, "Text_fit_summary");
    summary->setReadOnly(true);
    summary->setLineWrapMode(QPlainTextEdit::NoWrap);
    summary->setMinimumHeight(80);
    summary->setMaximumHeight(160);
    summary->hide();
    pl->addWidget(summary);
    return panel;
}

QWidget* modelling_window::build_graphs() {
    auto* area = new QWidget;
    auto* al = new QVBoxLayout(area);
    al->setContentsMargins(0, 0, 0, 0);
    al->setSpacing(2);

    graph_area_ = new graph_area(ws_);
    for (int i = 0; i < graph_count; ++i)
        graphs_[static_cast<std::size_t>(i)] = graph_area_->graph(i);
    plan_ = graph_area_->plan();
    al->addWidget(graph_area_, 1);

    auto frame = [](const QString& name) {
        auto* f = named(new QFrame, name);
        auto* fl = new QVBoxLayout(f);
        fl->setContentsMargins(0, 0, 0, 0);
        fl->setSpacing(2);
        return f;
    };
    auto* base = frame("Frame_base_levels");
    auto* bl = new QHBoxLayout;
    bl->addWidget(new QLabel("Mag base"));
    bl->addWidget(named(new QLineEdit, "Text_MAGINV_basemag"));
    bl->addWidget(new QLabel("Grav base"));
    bl->addWidget(named(new QLineEdit, "Text_MAGINV_basegrav"));
    static_cast<QVBoxLayout*>(base->layout())->addLayout(bl);
    al->addWidget(base);
    for (QLineEdit* edit : base->findChildren<QLineEdit*>()) connect_field(edit);

    auto* controls = new QHBoxLayout;
    auto* pan = named(new QScrollBar(Qt::Horizontal), "HScroll_pan");
    pan->setRange(0, 0);
    connect(pan, &QScrollBar::valueChanged, this, [this](int v) { hscroll_pan_changed(ws_, v); });
    controls->addWidget(pan, 1);
    auto* zoom = named(new QComboBox, "Combo_zoom");
    zoom->setEditable(true);
    zoom->addItems({"100%", "125%", "150%", "200%", "300%", "400%", "600%", "800%", "1000%"});
    connect(zoom, &QComboBox::activated, this, [this](int i) { combo_zoom_selected(ws_, i); });
    connect(zoom->lineEdit(), &QLineEdit::textEdited, this,
            [this](const QString& t) { combo_zoom_typed(ws_, t.toStdString()); });
    controls->addWidget(zoom);
    auto button = [this, controls](const QString& name, const QString& caption, auto handler) {
        auto* b = named(new QPushButton(caption), name);
        connect(b, &QPushButton::clicked, this, handler);
        controls->addWidget(b);
    };
    button("Command_reset_graph_scale", "Reset Scale", [this] { command_reset_graph_scale(ws_); });
    button("Command_show_section_or_plan", "Show Plan View",
           [this] { command_show_section_or_plan(ws_); });
    button("Command_Save_Screenshot", "Screenshot", [this] { save_screenshot(); });
    button("Command_save_qvx_model", "Save the Model", [this] { save_model_file(); });
    al->addLayout(controls);
    return area;
}

void modelling_window::save_model_file() {
    if (menu_open_model(ws_, 1) == 0) emit model_saved();
}

void modelling_window::define_coordinate_transform() {
    begin_define_transform(ws_);
    define_transform(ws_.transforms, ws_.ui, this);
    end_define_transform(ws_);
}

QImage modelling_window::capture_graphs() {
    QWidget* source = ws_.plan_shown ? static_cast<QWidget*>(plan_) : graph_area_;
    return source->grab().toImage().convertToFormat(QImage::Format_RGB888);
}

void modelling_window::save_screenshot() {
    const QImage image = capture_graphs();
    picture pic;
    pic.width = image.width();
    pic.height = image.height();
    pic.rgb.resize(static_cast<std::size_t>(pic.width) * pic.height * 3);
    for (int row = 0; row < pic.height; ++row)
        std::copy_n(image.constScanLine(row), pic.width * 3,
                    pic.rgb.data() + static_cast<std::size_t>(row) * pic.width * 3);
    save_screen_capture(ws_.model, pic, ws_.plan_shown, ws_.ui);
}

void modelling_window::unload() {
    if (unloaded_) return;
    unloaded_ = true;
    autosave_timer_.stop();
    close_model_autosave(ws_);
    form_unload(ws_);
}

void modelling_window::closeEvent(QCloseEvent* event) {
    unload();
    event->accept();
}

void modelling_window::resizeEvent(QResizeEvent* event) {
    QMainWindow::resizeEvent(event);
    if (isMinimized() || ws_.updating_display || !ws_.form_ready) return;
    resize_timer_.start();
}

QObject* modelling_window::control(const std::string& name) const {
    return findChild<QObject*>(q(name));
}

void modelling_window::set_scroll(const std::string& name, int value, int min, int max) {
    if (name.rfind("VScroll", 0) != 0) return qt_named_controls::set_scroll(name, value, min, max);
    if (auto* bar = qobject_cast<QScrollBar*>(control(name))) {
        const QSignalBlocker block(bar);
        bar->setValue(0);
    }
}

void modelling_window::select_tab(int index) {
    const QSignalBlocker block(tabs_);
    tabs_->setCurrentIndex(index);
    shown_tab_ = index;
}

int modelling_window::selected_item(const std::string& name) const {
    return std::max(qt_named_controls::selected_item(name), 0);
}

int modelling_window::current_tab() const {
    return tabs_->currentIndex();
}

void modelling_window::set_status(int panel, const std::string& text) {
    if (panel >= 1 && panel <= 6) status_[static_cast<std::size_t>(panel - 1)]->setText(q(text));
}

std::string modelling_window::status_text(int panel) const {
    if (panel < 1 || panel > 6) return {};
    return status_[static_cast<std::size_t>(panel - 1)]->text().toStdString();
}

void modelling_window::set_geometry(const std::string& name, float left, float top, float width,
                                    float height) {
    const double pixel = ws_.pointer.twips_per_pixel;
    const QRect rect(static_cast<int>(std::lround(left / pixel)),
                     static_cast<int>(std::lround(top / pixel)),
                     static_cast<int>(std::lround(width / pixel)),
                     static_cast<int>(std::lround(height / pixel)));
    if (graph_area_ && graph_area_->place(q(name), rect)) return;
    if (auto* widget = qobject_cast<QWidget*>(control(name))) widget->setGeometry(rect);
}

void modelling_window::set_caption(const std::string& caption) {
    setWindowTitle(q(caption));
}

void modelling_window::resize_form(int width, int height) {
    resize(width, height);
}

body_table_widget* modelling_window::grid(const std::string& name) const {
    return findChild<body_table_widget*>(q(name));
}

void modelling_window::set_grid_text(const std::string& name, const std::string& text) {
    if (body_table_widget* g = grid(name)) g->set_all_text(q(text));
}

std::string modelling_window::grid_cell(const std::string& name, int row, int column) const {
    const body_table_widget* g = grid(name);
    return g ? g->cell_text(row, column).toStdString() : std::string();
}

void modelling_window::set_grid_cell(const std::string& name, int row, int column,
                                     const std::string& text) {
    if (body_table_widget* g = grid(name)) g->set_cell_text(row, column, q(text));
}

view_rect modelling_window::grid_cell_rect(const std::string& name, int row, int column) const {
    const body_table_widget* g = grid(name);
    if (!g) return {};
    const QRect r = g->cell_rect(row, column);
    return {static_cast<double>(r.x()), static_cast<double>(r.y()), static_cast<double>(r.width()),
            static_cast<double>(r.height())};
}

void modelling_window::fit_grid_columns(const std::string& name,
                                        const std::vector<double>& extra_share) {
    if (body_table_widget* g = grid(name)) g->fit_columns(extra_share);
}

view_rect modelling_window::control_rect(const std::string& name) const {
    const auto* w = qobject_cast<const QWidget*>(control(name));
    if (!w) return {};
    const QPoint p = w->mapTo(this, QPoint(0, 0));
    return {static_cast<double>(p.x()), static_cast<double>(p.y()), static_cast<double>(w->width()),
            static_cast<double>(w->height())};
}

void modelling_window::set_control_rect(const std::string& name, const view_rect& rect) {
    auto* w = qobject_cast<QWidget*>(control(name));
    if (!w) return;
    QPoint p(static_cast<int>(std::lround(rect.left)), static_cast<int>(std::lround(rect.top)));
    if (QWidget* parent = w->parentWidget()) p = parent->mapFrom(this, p);
    w->setGeometry(p.x(), p.y(), static_cast<int>(std::lround(rect.width)),
                   static_cast<int>(std::lround(rect.height)));
}

void modelling_window::set_focus(const std::string& name) {
    if (auto* w = qobject_cast<QWidget*>(control(name))) w->setFocus(Qt::OtherFocusReason);
}

void modelling_window::set_tooltip(const std::string& name, const std::string& text) {
    if (auto* w = qobject_cast<QWidget*>(control(name))) w->setToolTip(q(text));
}

}  // namespace trensil
