// Grid_body: the current body as a table of properties (row 0 the heading, column 0 the row
// labels), with the edit box Text_edit and the type list Combo_model_type that the window's logic
// lays over a cell. The widget only shows and reports: a click on a cell, the end of an edit
// (Return, or leaving the box), a cancel (Escape) and a chosen type go out as signals.
//
//   auto* table = new body_table_widget;
//   table->set_all_text("Property\tValue\tVary\tMin\tMax\rBody Type\tThin Sheet");
//   connect(table, &body_table_widget::cell_clicked, ...);
#pragma once

#include <QRect>
#include <QTableWidget>
#include <vector>

class QComboBox;
class QLineEdit;

namespace trensil {

class body_table_widget : public QTableWidget {
    Q_OBJECT
public:
    explicit body_table_widget(QWidget* parent = nullptr);

    // The whole table: cells separated by tabs, rows by returns; row 0 is the heading.
    void set_all_text(const QString& text);
    QString cell_text(int row, int column) const;
    void set_cell_text(int row, int column, const QString& text);
    // A cell's rectangle in this widget's coordinates (row 0: the heading).
    QRect cell_rect(int row, int column) const;
    // Each column as wide as its contents plus a share of the table's width.
    void fit_columns(const std::vector<double>& extra_share);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

    QLineEdit* edit_box() const { return edit_; }
    QComboBox* type_box() const { return types_; }

signals:
    void cell_clicked(int row, int column);
    void edit_finished();
    void edit_cancelled();
    void type_chosen(int index);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool focusNextPrevChild(bool next) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void refit_columns();

    std::vector<double> extra_share_;
    QLineEdit* edit_;
    QComboBox* types_;
};

}  // namespace trensil
