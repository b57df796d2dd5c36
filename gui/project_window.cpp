#include "project_window.h"

#include <QAction>
#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QSplitter>
#include <QStatusBar>
#include <QTabWidget>
#include <QTableWidget>
#include <QVBoxLayout>
#include <chrono>

#include "control_access.h"
#include "grid/gdal_grid.h"
#include "program_modules.h"
#include "project/project_transform.h"
#include "recovery_support.h"
#include "transform_dialog.h"

namespace trensil {

namespace {
QGroupBox* frame(const QString& name, const QString& title) {
    return named(new QGroupBox(title), name);
}

const char* const grid_tab_titles[grid_tab_count] = {"Magnetics", "DTM", "Sensor"};
}  // namespace

project_window::project_window(platform& ui, settings_store& settings, QWidget* parent)
    : QMainWindow(parent), ui_(ui), settings_(settings), ws_(ui, settings, open_gdal_grid) {
    setObjectName("Form_QuorlTrensilProject");
    setWindowTitle("Trensil Project");
    ws_.view = this;
    ws_.open_modeller = [this](const std::string& path) { return open_modeller(path); };
    ws_.modeller_is_open = [this] { return modeller_ && modeller_->isVisible(); };
    ws_.modeller_has_changes = [this] { return modeller_ && modeller_->workspace().model_changed; };

    build_menus();
    auto* left = named(new QWidget, "Frame_main");
    auto* ll = new QVBoxLayout(left);
    ll->setContentsMargins(4, 4, 4, 4);
    ll->addWidget(build_line_list());
    ll->addWidget(build_points_frame());
    // A new line comes from a data file or from the grids: one tab each.
    auto* new_line = named(new QTabWidget, "Tab_new_line");
    new_line->addTab(build_data_file_frame(), "New line from a data file");
    new_line->addTab(build_digitising_frame(), "New line on the grids");
    ll->addWidget(new_line);
    ll->addWidget(build_output_frame());
    ll->addStretch();
    auto* scroll = new QScrollArea;
    scroll->setWidget(left);
    scroll->setWidgetResizable(true);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setMinimumWidth(left->sizeHint().width() + 24);

    auto* right = new QSplitter(Qt::Vertical);
    right->addWidget(build_grid_tabs());
    auto* profiles = frame("Frame_profile", "Profile");
    auto* pl = new QVBoxLayout(profiles);
    pl->setContentsMargins(4, 4, 4, 4);
    profile_ = named(new graph_widget, "Graph_profile");
    profile_->setMinimumHeight(140);
    pl->addWidget(profile_);
    right->addWidget(profiles);
    right->setStretchFactor(0, 3);
    right->setStretchFactor(1, 1);
    ws_.profile_graph = profile_;
    connect(profile_, &graph_widget::pointer_moved, this, [this](bool outside, double x, double y) {
        if (outside)
            set_status("");
        else
            graph_profile_pointer(ws_, x, y);
    });

    auto* split = named(new QSplitter(Qt::Horizontal), "Splitter_main");
    split->addWidget(scroll);
    split->addWidget(right);
    split->setStretchFactor(1, 1);
    setCentralWidget(split);

    coords_ = named(new QLabel, "StatusBar_coords");
    coords_->setMinimumWidth(420);
    statusBar()->setObjectName("StatusBar");
    statusBar()->addWidget(coords_, 1);

    resize(1400, 900);
    project_form_load(ws_);

    if (recovery_session* session = recovery_session_in_use()) {
        start_project_autosave(ws_, *session);
        autosave_timer_.setObjectName("Timer_autosave");
        autosave_timer_.setInterval(250);
        connect(&autosave_timer_, &QTimer::timeout, this,
                [this] { project_autosave_tick(ws_, std::chrono::steady_clock::now()); });
        autosave_timer_.start();
    }
}

project_window::~project_window() {
    if (modeller_) delete modeller_.data();
}

void project_window::build_menus() {
    auto add = [this](QMenu* menu, const QString& name, const QString& caption,
                      auto handler) -> QAction* {
        QAction* action = menu->addAction(caption);
        action->setObjectName(name);
        action->setParent(this);
        connect(action, &QAction::triggered, this, handler);
        return action;
    };
    QMenu* file = menuBar()->addMenu("&File");
    add(file, "file_create_project", "New Project", [this] {
        file_create_project(ws_);
    })->setShortcut(QKeySequence::New);
    add(file, "file_open_project", "Open Project...", [this] {
        file_open_project(ws_);
    })->setShortcut(QKeySequence::Open);
    add(file, "file_save_project", "Save Project", [this] {
        if (ws_.project_file.empty())
            file_save_project(ws_);
        else
            write_current_project(ws_);
    })->setShortcut(QKeySequence::Save);
    add(file, "file_save_project_as", "Save Project As...", [this] { file_save_project(ws_); });
    file->addSeparator();
    add(file, "menu_define_transform", "Define Coordinate Transform...",
        [this] { define_coordinate_transform(); });
    file->addSeparator();
    add(file, "menu_exit", "Exit", [this] { close(); })->setShortcut(QKeySequence::Quit);
    QMenu* help = menuBar()->addMenu("&Help");
    add(help, "menu_about", "About Trensil", [this] { show_about_box(this); });
    add(help, "menu_modules", "Program Modules", [this] { show_program_modules(this); });
}

QWidget* project_window::build_line_list() {
    auto* box = frame("Frame_qvx_list", "Project lines");
    auto* layout = new QVBoxLayout(box);
    auto* table = named(new QTableWidget(0, 5), "Grid_profile_lines");
    table->setHorizontalHeaderLabels({"Line Number", "X", "Y", "Z", "Burial"});
    table->verticalHeader()->hide();
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    table->setSelectionMode(QAbstractItemView::SingleSelection);
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    table->setMinimumHeight(150);
    connect(table, &QTableWidget::cellClicked, this,
            [this](int row, int) { select_line(ws_, row + 1); });
    connect(table, &QTableWidget::cellDoubleClicked, this, [this](int row, int) {
        select_line(ws_, row + 1);
        if (ws_.current_line == row + 1) command_open_trensil(ws_);
    });
    layout->addWidget(table);

    auto* row = new QHBoxLayout;
    auto* combo = named(new QComboBox, "Combo_QVX_line");
    combo->setToolTip("The current line");
    combo->setMinimumWidth(90);
    connect(combo, &QComboBox::activated, this, [this](int index) { select_line(ws_, index + 1); });
    row->addWidget(combo);
    auto* second = new QHBoxLayout;
    auto button = [this](QHBoxLayout* to, const QString& name, const QString& caption,
                         const QString& tip, auto handler) {
        auto* b = named(new QPushButton(caption), name);
        b->setToolTip(tip);
        connect(b, &QPushButton::clicked, this, handler);
        to->addWidget(b);
    };
    button(row, "Command_open_trensil", "Open Trensil",
           "Model the current line in the modelling window", [this] { command_open_trensil(ws_); });
    button(row, "Command_zoom_to_line", "Zoom to Line", "Show the current line on the grids",
           [this] { command_zoom_to_line(ws_); });
    layout->addLayout(row);
    second->addWidget(new QLabel("Bodies"));
    auto* body_list = named(new QComboBox, "Combo_body_list");
    body_list->setToolTip("The bodies of the current line's model");
    second->addWidget(body_list, 1);
    button(second, "Command_add_line_model", "Add Line...",
           "Add a line for a model file that exists", [this] { command_add_line_model(ws_); });
    button(second, "Command_delete_line", "Delete Line", "Remove the current line from the project",
           [this] { command_delete_line(ws_); });
    layout->addLayout(second);
    return box;
}

QWidget* project_window::build_data_file_frame() {
    auto* box = named(new QWidget, "Frame_line_defs");
    auto* layout = new QVBoxLayout(box);
    auto* file_row = new QHBoxLayout;
    auto* path = named(new QLineEdit, "Text_data_locations");
    path->setReadOnly(true);
    path->setPlaceholderText("The observed data file");
    file_row->addWidget(path, 1);
    auto* browse = named(new QPushButton("Browse..."), "Command_add_new_file");
    browse->setToolTip(
        "Choose a data file (csv, dat, xyz, txt) or a model file to take columns from");
    connect(browse, &QPushButton::clicked, this, [this] { command_add_new_file(ws_); });
    file_row->addWidget(browse);
    layout->addLayout(file_row);

    auto* grid = new QGridLayout;
    auto field = [this, grid](const QString& name, const QString& label, int row, int column,
                              void (*handler)(project_workspace&)) {
        grid->addWidget(new QLabel(label), row, column * 2);
        auto* edit = named(new QLineEdit, name);
        edit->setMaximumWidth(56);
        grid->addWidget(edit, row, column * 2 + 1);
        connect(edit, &QLineEdit::textEdited, this, [this, handler] {
            if (!ws_.updating_display) handler(ws_);
        });
    };
    field("Text_MAGINV_nhead", "First data line", 0, 0, decode_column_positions);
    field("Text_MAGINV_nstep", "Every n-th line", 0, 1, decode_column_positions);
    field("Text_locations_name_line", "Names line", 0, 2, decode_names);
    field("Text_MAGINV_xpos", "East", 1, 0, decode_column_positions);
    field("Text_MAGINV_ypos", "North", 1, 1, decode_column_positions);
    field("Text_MAGINV_zpos", "Sensor", 1, 2, decode_column_positions);
    field("Text_MAGINV_dtm", "Ground", 2, 0, decode_column_positions);
    field("Text_MAGINV_magpos", "Magnetics", 2, 1, decode_column_positions);
    field("Text_MAGINV_gravpos", "Gravity", 2, 2, decode_column_positions);
    layout->addLayout(grid);

    auto* names_row = new QHBoxLayout;
    names_row->addWidget(new QLabel("Column names"));
    auto* names = named(new QComboBox, "Combo_names");
    names->setToolTip("The names on the names line, in column order: entry 1 is column 1");
    names_row->addWidget(names, 1);
    layout->addLayout(names_row);

    auto* preview = named(new QTableWidget, "Grid_database");
    preview->setEditTriggers(QAbstractItemView::NoEditTriggers);
    preview->verticalHeader()->hide();
    preview->verticalHeader()->setDefaultSectionSize(preview->fontMetrics().height() + 4);
    preview->setMinimumHeight(150);
    preview->setToolTip("The first lines of the data file, split into columns");
    layout->addWidget(preview);

    auto* commands = new QHBoxLayout;
    auto* transform =
        named(new QPushButton("Define Coordinate Transform"), "Command_define_transform");
    connect(transform, &QPushButton::clicked, this, [this] { define_coordinate_transform(); });
    commands->addWidget(transform);
    auto* load = named(new QPushButton("Load Locations"), "Command_load_locations");
    load->setToolTip("Read the data file with these columns and show its profile");
    connect(load, &QPushButton::clicked, this, [this] { command_load_locations(ws_); });
    commands->addWidget(load);
    layout->addLayout(commands);
    return box;
}

QWidget* project_window::build_digitising_frame() {
    auto* box = named(new QWidget, "Frame_grid_sampling_definitions");
    auto* layout = new QVBoxLayout(box);
    auto* form = new QFormLayout;
    auto* interval = named(new QLineEdit, "Text_sample_interval");
    interval->setToolTip("Distance between stations along the profile");
    form->addRow("Station interval", interval);
    form->addRow("Surface elevation", named(new QLineEdit, "Text_surface_elevation"));
    form->addRow("Sensor offset", named(new QLineEdit, "Text_sensor_offset"));
    layout->addLayout(form);
    layout->addWidget(named(new QCheckBox("Sensor grid values are heights above the ground"),
                            "Check_value_is_height"));
    layout->addWidget(named(new QCheckBox("Sensor grid values are depths below the ground"),
                            "Check_value_is_depth"));

    auto* commands = new QHBoxLayout;
    auto* start = named(new QPushButton("Digitise New Line"), "Command_digitise_new_line");
    start->setToolTip("Click points of a baseline on the grid; drag to pan, wheel to zoom");
    connect(start, &QPushButton::clicked, this, [this] { command_digitise_new_line(ws_); });
    commands->addWidget(start);
    auto* done = named(new QPushButton("Close"), "Command_done_new_line");
    done->setToolTip("Stop digitising");
    connect(done, &QPushButton::clicked, this, [this] { command_done_new_line(ws_); });
    commands->addWidget(done);
    layout->addLayout(commands);
    layout->addStretch();
    return box;
}

// The points of the baseline being digitised, shown in place of the line list.
QWidget* project_window::build_points_frame() {
    auto* points = frame("Frame_grid_profiles", "Baseline points");
    auto* pg = new QGridLayout(points);
    pg->addWidget(new QLabel("Points"), 0, 0);
    auto* count = named(new QLineEdit, "Text_num_digitised_points");
    count->setReadOnly(true);
    count->setMaximumWidth(56);
    pg->addWidget(count, 0, 1);
    auto* bar = named(new QScrollBar(Qt::Horizontal), "HScroll_data_point");
    bar->setRange(0, 0);
    connect(bar, &QScrollBar::valueChanged, this, [this](int v) {
        if (!ws_.updating_display) hscroll_data_point_changed(ws_, v);
    });
    pg->addWidget(bar, 0, 2, 1, 3);
    pg->addWidget(new QLabel("East"), 1, 0);
    pg->addWidget(named(new QLineEdit, "Text_east"), 1, 1, 1, 2);
    pg->addWidget(new QLabel("North"), 1, 3);
    pg->addWidget(named(new QLineEdit, "Text_north"), 1, 4);
    pg->addWidget(new QLabel("Value"), 2, 0);
    auto* label = named(new QLineEdit, "Text_label");
    label->setReadOnly(true);
    pg->addWidget(label, 2, 1, 1, 2);
    auto* save = named(new QPushButton("Save"), "Command_save_point_0");
    save->setToolTip("Move the point to the position typed");
    connect(save, &QPushButton::clicked, this, [this] { command_save_point(ws_, 0); });
    pg->addWidget(save, 2, 3);
    auto* remove = named(new QPushButton("Delete"), "Command_save_point_1");
    remove->setToolTip("Delete the point");
    connect(remove, &QPushButton::clicked, this, [this] { command_save_point(ws_, 1); });
    pg->addWidget(remove, 2, 4);
    return points;
}

QWidget* project_window::build_output_frame() {
    auto* box = frame("Frame_output_file", "Line files");
    auto* layout = new QHBoxLayout(box);
    auto* csv = named(new QPushButton("Save New CSV Data File"), "Command_save_file_0");
    csv->setToolTip("Use this to save the profile data to a csv file");
    connect(csv, &QPushButton::clicked, this, [this] { save_line(ws_, 0); });
    auto* model = named(new QPushButton("Save New Trensil File"), "Command_save_file_1");
    model->setToolTip("Save the line's csv and model files and add the line to the project");
    connect(model, &QPushButton::clicked, this, [this] { save_line(ws_, 1); });
    layout->addWidget(csv);
    layout->addWidget(model);
    return box;
}

QWidget* project_window::build_grid_tabs() {
    grid_tabs_ = named(new QTabWidget, "Tab_grids");
    for (int tab = 0; tab < grid_tab_count; ++tab) {
        const auto t = static_cast<std::size_t>(tab);
        auto* page = new QWidget;
        auto* layout = new QVBoxLayout(page);
        layout->setContentsMargins(2, 2, 2, 2);
        auto* row = new QHBoxLayout;
        row->addWidget(new QLabel("Grid file"));
        selectors_[t] = named(new grid_file_selector(ui_), QString("GridFileSelector_%1").arg(tab));
        connect(
            selectors_[t], &grid_file_selector::file_changed, this,
            [this, tab](const QString& path) { grid_file_changed(ws_, tab, path.toStdString()); });
        row->addWidget(selectors_[t], 1);
        auto* sample =
            named(new QCheckBox("Sample this grid"), QString("Check_sample_grid_%1").arg(tab));
        sample->setToolTip("Take the line's values from this grid when its files are saved");
        row->addWidget(sample);
        layout->addLayout(row);
        viewers_[t] = named(new grid_viewer, QString("GridViewer_%1").arg(tab));
        connect(viewers_[t], &grid_viewer::pointer_event, this,
                [this, tab](int code, int button, bool shift, double x, double y) {
                    grid_viewer_pointer(ws_, tab, code, button, shift, x, y);
                });
        connect(viewers_[t], &grid_viewer::pointer_moved, this,
                [this](bool outside, double, double) {
                    if (outside) set_status("");
                });
        layout->addWidget(viewers_[t], 1);
        grid_tabs_->addTab(page, grid_tab_titles[tab]);
    }
    return grid_tabs_;
}

int project_window::open_modeller(const std::string& model_path) {
    if (!modeller_) {
        modeller_ = new modelling_window(ui_, settings_, true);
        modeller_->setAttribute(Qt::WA_DeleteOnClose);
        // A save in the modelling window is the project line's new state.
        connect(modeller_, &modelling_window::model_saved, this,
                [this] { update_current_QVX_line(ws_); });
    }
    modeller_->show();
    modeller_->raise();
    modeller_->activateWindow();
    return load_and_display_QVX_model(modeller_->workspace(), model_path);
}

void project_window::define_coordinate_transform() {
    begin_define_transform(ws_);
    define_transform(ws_.transforms, ui_, this);
    end_define_transform(ws_);
}

QImage project_window::capture() {
    return grab().toImage().convertToFormat(QImage::Format_RGB888);
}

void project_window::unload() {
    if (unloaded_) return;
    unloaded_ = true;
    autosave_timer_.stop();
    close_project_autosave(ws_);
    project_form_unload(ws_);
}

void project_window::closeEvent(QCloseEvent* event) {
    unload();
    event->accept();
}

QObject* project_window::control(const std::string& name) const {
    return findChild<QObject*>(q(name));
}

void project_window::set_table(const std::string& name,
                               const std::vector<std::vector<std::string>>& rows) {
    auto* table = qobject_cast<QTableWidget*>(control(name));
    if (!table) return;
    const QSignalBlocker block(table);
    std::size_t columns = 0;
    for (const auto& r : rows) columns = std::max(columns, r.size());
    table->clearContents();
    table->setColumnCount(static_cast<int>(columns));
    table->setRowCount(rows.empty() ? 0 : static_cast<int>(rows.size() - 1));
    if (rows.empty()) return;
    QStringList heads;
    for (const std::string& h : rows.front()) heads << q(h);
    table->setHorizontalHeaderLabels(heads);
    for (std::size_t r = 1; r < rows.size(); ++r)
        for (std::size_t c = 0; c < rows[r].size(); ++c)
            table->setItem(static_cast<int>(r - 1), static_cast<int>(c),
                           new QTableWidgetItem(q(rows[r][c])));
    if (table->horizontalHeader()->sectionResizeMode(0) != QHeaderView::Stretch)
        table->resizeColumnsToContents();
}

void project_window::select_row(const std::string& name, int row) {
    auto* table = qobject_cast<QTableWidget*>(control(name));
    if (!table) return;
    const QSignalBlocker block(table);
    if (row < 1 || row > table->rowCount()) {
        table->clearSelection();
        return;
    }
    table->selectRow(row - 1);
    table->scrollToItem(table->item(row - 1, 0));
}

void project_window::select_grid_tab(int tab) {
    if (tab >= 0 && tab < grid_tab_count) grid_tabs_->setCurrentIndex(tab);
}

int project_window::current_grid_tab() const {
    return grid_tabs_->currentIndex();
}

void project_window::show_grid(int tab, const grid_source* grid) {
    if (tab < 0 || tab >= grid_tab_count) return;
    viewers_[static_cast<std::size_t>(tab)]->set_grid(grid);
}

void project_window::set_viewer_lines(const std::vector<viewer_line>& lines) {
    std::vector<grid_viewer::line_overlay> project_lines;
    std::vector<QPointF> baseline, stations;
    int selected = 0;
    auto points = [](const viewer_line& l) {
        std::vector<QPointF> p;
        for (std::size_t i = 0; i < l.x.size() && i < l.y.size(); ++i)
            p.emplace_back(l.x[i], l.y[i]);
        return p;
    };
    for (const viewer_line& l : lines) {
        switch (l.role) {
            case viewer_line::kind::digitised:
                baseline = points(l);
                break;
            case viewer_line::kind::stations:
                stations = points(l);
                break;
            case viewer_line::kind::current_line:
            case viewer_line::kind::project_line: {
                const int number = std::atoi(l.label.c_str());
                if (l.role == viewer_line::kind::current_line) selected = number;
                project_lines.push_back({number, points(l)});
                break;
            }
        }
    }
    // Each point of the baseline carries the value the magnetic grid gave there.
    const digitising_state& d = ws_.digitising;
    std::vector<QString> labels;
    for (int i = 1; i <= d.num_digitised_points && i <= static_cast<int>(baseline.size()); ++i)
        labels.push_back(q(d.label(i)));
    for (grid_viewer* v : viewers_) {
        v->set_project_lines(project_lines, selected);
        v->set_digitised_line(baseline, labels, d.current_point - 1);
        v->set_stations(stations);
    }
}

void project_window::zoom_viewers(double xmin, double ymin, double xmax, double ymax) {
    for (grid_viewer* v : viewers_)
        v->zoom_to_box(QRectF(QPointF(xmin, ymin), QPointF(xmax, ymax)));
}

void project_window::set_status(const std::string& text) {
    coords_->setText(q(text));
}

void project_window::set_caption(const std::string& caption) {
    setWindowTitle(q(caption));
}

void project_window::resize_form(int width, int height) {
    resize(width, height);
}

}  // namespace trensil
