// The project window, the program's start-up window: the project's lines (Grid_profile_lines),
// a new line from a data file with its column preview (Grid_database, Combo_names), a new line
// digitised on the grids of three tabs (magnetics, DTM, sensor) with its profile in
// Graph_profile, the line files, and the modelling window opened on a line. Every control
// carries its name as its object name; events go to the window's logic in
// project/project_workspace.h, which talks back through the project_view operations.
//
//   project_window window(ui, settings);
//   window.show();
//   open_project_file(window.workspace(), "/survey/area.qvj");
#pragma once

#include <QImage>
#include <QMainWindow>
#include <QPointer>
#include <QTimer>
#include <array>

#include "graph_widget.h"
#include "grid_file_selector.h"
#include "grid_viewer.h"
#include "modelling_window.h"
#include "project/project_workspace.h"
#include "qt_named_controls.h"

class QLabel;
class QTabWidget;
class QTableWidget;

namespace trensil {

class project_window : public QMainWindow, public qt_named_controls<project_view> {
    Q_OBJECT
public:
    project_window(platform& ui, settings_store& settings, QWidget* parent = nullptr);
    ~project_window() override;

    project_workspace& workspace() { return ws_; }
    grid_viewer* viewer(int tab) { return viewers_[static_cast<std::size_t>(tab)]; }
    graph_widget* profile_graph() { return profile_; }
    // The modelling window opened from this one; null while none is open.
    modelling_window* modeller() { return modeller_; }
    // The window as shown, for the screenshot option.
    QImage capture();
    // Stores the settings as the window's closing does.
    void unload();

    // project_view
    void set_table(const std::string& control,
                   const std::vector<std::vector<std::string>>& rows) override;
    void select_row(const std::string& control, int row) override;
    void select_grid_tab(int tab) override;
    int current_grid_tab() const override;
    void show_grid(int tab, const grid_source* grid) override;
    void set_viewer_lines(const std::vector<viewer_line>& lines) override;
    void zoom_viewers(double xmin, double ymin, double xmax, double ymax) override;
    void set_status(const std::string& text) override;
    void set_caption(const std::string& caption) override;
    void resize_form(int width, int height) override;
    int form_width() const override { return QMainWindow::width(); }
    int form_height() const override { return QMainWindow::height(); }

protected:
    void closeEvent(QCloseEvent* event) override;

    QObject* control(const std::string& name) const override;

private:
    void build_menus();
    QWidget* build_line_list();
    QWidget* build_data_file_frame();
    QWidget* build_digitising_frame();
    QWidget* build_points_frame();
    QWidget* build_output_frame();
    QWidget* build_grid_tabs();
    // Shows the modelling window (made on first use) on a model; 0, or -1 when it cannot read it.
    int open_modeller(const std::string& model_path);
    void define_coordinate_transform();

    platform& ui_;
    settings_store& settings_;
    project_workspace ws_;
    std::array<grid_viewer*, grid_tab_count> viewers_{};
    std::array<grid_file_selector*, grid_tab_count> selectors_{};
    QTabWidget* grid_tabs_ = nullptr;
    graph_widget* profile_ = nullptr;
    QLabel* coords_ = nullptr;
    QPointer<modelling_window> modeller_;
    // Asks a few times a second whether the project's recovery copy is due.
    QTimer autosave_timer_;
    bool unloaded_ = false;
};

}  // namespace trensil
