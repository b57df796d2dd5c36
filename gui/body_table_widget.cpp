#include "body_table_widget.h"

#include <QComboBox>
#include <QFocusEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>

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
    setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 6);

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
    setRowCount(static_cast<int>(rows.size()) - 1);
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
    resizeColumnsToContents();
    for (int c = 0; c < columnCount() && c < static_cast<int>(extra_share.size()); ++c)
        setColumnWidth(c, columnWidth(c) + static_cast<int>(extra_share[c] * width()));
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
