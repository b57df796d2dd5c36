#include "body_table_widget.h"

#include <QApplication>
#include <QComboBox>
#include <QFocusEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <algorithm>

namespace trensil {

body_table_widget::body_table_widget(QWidget* parent) : QTableWidget(parent) {
    setObjectName("Grid_body");
    setColumnCount(5);
    verticalHeader()->hide();
    horizontalHeader()->setSectionsClickable(false);
    horizontalHeader()->setHighlightSections(false);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setSelectionBehavior(QAbstractItemView::SelectItems);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 6);
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);

    edit_ = new QLineEdit(this);
    edit_->setObjectName("Text_edit");
    edit_->setFrame(false);
    edit_->hide();
    edit_->installEventFilter(this);

    types_ = new QComboBox(this);
    types_->setObjectName("Combo_model_type");
    types_->hide();
    types_->installEventFilter(this);
    connect(types_, &QComboBox::activated, this, [this](int index) { emit type_chosen(index); });

    connect(this, &QTableWidget::cellClicked, this,
            [this](int row, int column) { emit cell_clicked(row + 1, column); });
}

void body_table_widget::set_all_text(const QString& text) {
    const QStringList rows = text.split('\r');
    if (rows.isEmpty()) return;
    setHorizontalHeaderLabels(rows.front().split('\t'));
    if (rowCount() != rows.size() - 1) {
        setRowCount(static_cast<int>(rows.size()) - 1);
        updateGeometry();
    }
    for (int r = 1; r < rows.size(); ++r) {
        const QStringList cells = rows[r].split('\t');
        for (int c = 0; c < columnCount(); ++c)
            set_cell_text(r, c, c < cells.size() ? cells[c] : QString());
    }
}

QString body_table_widget::cell_text(int row, int column) const {
    if (row == 0) {
        const QTableWidgetItem* heading = horizontalHeaderItem(column);
        return heading ? heading->text() : QString();
    }
    const QTableWidgetItem* cell = item(row - 1, column);
    return cell ? cell->text() : QString();
}

void body_table_widget::set_cell_text(int row, int column, const QString& text) {
    if (row == 0) {
        QTableWidgetItem* heading = horizontalHeaderItem(column);
        if (heading) heading->setText(text);
        return;
    }
    if (row - 1 >= rowCount() || column >= columnCount()) return;
    QTableWidgetItem* cell = item(row - 1, column);
    if (!cell) {
        cell = new QTableWidgetItem;
        // The label column is fixed: shaded and not selectable.
        if (column == 0) {
            cell->setFlags(Qt::ItemIsEnabled);
            cell->setBackground(palette().button());
        } else {
            cell->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
        }
        setItem(row - 1, column, cell);
    }
    cell->setText(text);
}

QRect body_table_widget::cell_rect(int row, int column) const {
    const QPoint origin = viewport()->pos();
    if (row == 0) {
        const QHeaderView* header = horizontalHeader();
        return {origin.x() + header->sectionViewportPosition(column), header->y(),
                header->sectionSize(column), header->height()};
    }
    return visualRect(model()->index(row - 1, column)).translated(origin);
}

void body_table_widget::fit_columns(const std::vector<double>& extra_share) {
    extra_share_ = extra_share;
    refit_columns();
}

void body_table_widget::refit_columns() {
    resizeColumnsToContents();
    const int columns = std::min(columnCount(), static_cast<int>(extra_share_.size()));
    int contents = 0;
    double extra = 0.0;
    for (int c = 0; c < columnCount(); ++c) contents += columnWidth(c);
    for (int c = 0; c < columns; ++c) extra += extra_share_[static_cast<std::size_t>(c)] * width();
    // The extra widths shrink alike where they would push the last column out of sight.
    const double room = std::max(0, viewport()->width() - contents);
    const double scale = extra > room ? room / extra : 1.0;
    int used = 0;
    for (int c = 0; c < columns; ++c) {
        const double share = extra_share_[static_cast<std::size_t>(c)];
        setColumnWidth(c, columnWidth(c) + static_cast<int>(share * width() * scale));
        used += columnWidth(c);
    }
    // What is left of the width goes to the last column.
    const int last = columnCount() - 1;
    if (last >= 0 && used < viewport()->width())
        setColumnWidth(last, columnWidth(last) + viewport()->width() - used);
}

void body_table_widget::resizeEvent(QResizeEvent* event) {
    QTableWidget::resizeEvent(event);
    if (!extra_share_.empty()) refit_columns();
}

QSize body_table_widget::sizeHint() const {
    // Tall enough for every row: the table is the body's whole record.
    const int rows = std::max(rowCount(), 1);
    const int height = horizontalHeader()->height() +
                       rows * verticalHeader()->defaultSectionSize() + 2 * frameWidth() + 2;
    return {QTableWidget::sizeHint().width(), height};
}

QSize body_table_widget::minimumSizeHint() const {
    return {QTableWidget::minimumSizeHint().width(), sizeHint().height()};
}

bool body_table_widget::eventFilter(QObject* watched, QEvent* event) {
    if (watched == edit_) {
        if (event->type() == QEvent::KeyPress) {
            const int key = static_cast<QKeyEvent*>(event)->key();
            if (key == Qt::Key_Return || key == Qt::Key_Enter) {
                emit edit_finished();
                return true;
            }
            if (key == Qt::Key_Escape) {
                emit edit_cancelled();
                return true;
            }
        } else if (event->type() == QEvent::FocusOut &&
                   static_cast<QFocusEvent*>(event)->reason() != Qt::PopupFocusReason &&
                   edit_->isVisible()) {
            emit edit_finished();
        }
    } else if (watched == types_) {
        // The list closes without a change when the user leaves it or presses Escape.
        const bool left = event->type() == QEvent::FocusOut &&
                          static_cast<QFocusEvent*>(event)->reason() != Qt::PopupFocusReason;
        const bool escaped = event->type() == QEvent::KeyPress &&
                             static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape;
        if (left || escaped) types_->hide();
        if (escaped) return true;
    }
    return QTableWidget::eventFilter(watched, event);
}

// The edit box or the type list hidden while it has the focus hands the focus back to the table,
// without the table's own move to the next cell.
bool body_table_widget::focusNextPrevChild(bool next) {
    QWidget* focus = QApplication::focusWidget();
    if (focus == edit_ || focus == types_) {
        setFocus(Qt::OtherFocusReason);
        return true;
    }
    return QTableWidget::focusNextPrevChild(next);
}

// Return or F2 on a selected cell acts as a click on it, so the table works from the keyboard.
void body_table_widget::keyPressEvent(QKeyEvent* event) {
    const int key = event->key();
    if ((key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_F2) && currentRow() >= 0) {
        emit cell_clicked(currentRow() + 1, currentColumn());
        return;
    }
    QTableWidget::keyPressEvent(event);
}

}  // namespace trensil
