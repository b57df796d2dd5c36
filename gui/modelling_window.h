// The modelling window: the tabs of model-wide fields, the four response graphs and the section
// (or the plan) on one distance axis, the zoom and pan bars, the menus and the status bar. Every
// control carries its name as its object name; events go to the window's logic in
// workspace/modelling_workspace.h, which talks back through the modelling_view operations.
#pragma once

#include <QImage>
#include <QMainWindow>
#include <QTimer>
#include <array>

#include "body_table_widget.h"
#include "graph_area.h"
#include "graph_widget.h"
#include "qt_named_controls.h"
#include "qt_platform.h"
#include "workspace/modelling_workspace.h"
#include "workspace/workspace_inversion_view.h"

class QTabWidget;
class QLabel;
class QLineEdit;

namespace trensil {

class modelling_window : public QMainWindow, public qt_named_controls<modelling_view> {
    Q_OBJECT
public:
    modelling_window(platform& ui, settings_store& settings, bool opened_from_project = false,
                     QWidget* parent = nullptr);
    ~modelling_window() override;

    modelling_workspace& workspace() { return ws_; }
    graph_widget* graph(int index) { return graphs_[static_cast<std::size_t>(index)]; }
    graph_widget* plan_graph() { return plan_; }
    // The graphs as shown: the section's stack of graphs, or the plan.
    QImage capture_graphs();
    // Writes the capture beside the model and puts it on the clipboard.
    void save_screenshot();
    // Stores the settings as the window's closing does.
    void unload();

    // modelling_view
    // The vertical bars of the scrolled panels stay at their top; a list not found has item 0
    // selected.
    void set_scroll(const std::string& control, int value, int min, int max) override;
    int selected_item(const std::string& control) const override;
    void select_tab(int index) override;
    int current_tab() const override;
    void set_status(int panel, const std::string& text) override;
    std::string status_text(int panel) const override;
    void set_geometry(const std::string& control, float left, float top, float width,
                      float height) override;
    void set_caption(const std::string& caption) override;
    void resize_form(int width, int height) override;
    int form_width() const override { return QMainWindow::width(); }
    int form_height() const override { return QMainWindow::height(); }
    void set_grid_text(const std::string& grid, const std::string& text) override;
    std::string grid_cell(const std::string& grid, int row, int column) const override;
    void set_grid_cell(const std::string& grid, int row, int column,
                       const std::string& text) override;
    view_rect grid_cell_rect(const std::string& grid, int row, int column) const override;
    void fit_grid_columns(const std::string& grid, const std::vector<double>& extra_share) override;
    view_rect control_rect(const std::string& control) const override;
    void set_control_rect(const std::string& control, const view_rect& rect) override;
    void set_focus(const std::string& control) override;
    void set_tooltip(const std::string& control, const std::string& text) override;

signals:
    // The model was saved to its file (the project window takes a project line's save back).
    void model_saved();

protected:
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

    QObject* control(const std::string& name) const override;

private:
    body_table_widget* grid(const std::string& name) const;
    void build_menus();
    QWidget* build_tabs();
    QWidget* build_graphs();
    QWidget* build_inversion_panel();
    // The edit's changes go to model_field_changed under its name.
    void connect_field(QLineEdit* edit);
    void save_model_file();
    void define_coordinate_transform();

    modelling_workspace ws_;
    workspace_inversion_view inversion_panel_;
    std::array<graph_widget*, graph_count> graphs_{};
    graph_widget* plan_ = nullptr;
    graph_area* graph_area_ = nullptr;
    QTabWidget* tabs_ = nullptr;
    int shown_tab_ = 0;
    std::array<QLabel*, 6> status_{};
    QTimer resize_timer_;
    // Asks a few times a second whether the recovery copy is due (workspace/model_recovery.h).
    QTimer autosave_timer_;
    bool unloaded_ = false;
};

}  // namespace trensil
