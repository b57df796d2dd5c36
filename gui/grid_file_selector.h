// The grid file selector of a grid tab: the chosen file's path and a button that opens the file
// dialog (through the program's platform, so that tests can answer it). `file_changed` is raised
// when the user picks a file or types a path and presses Enter; set_file shows a path without
// raising it.
#pragma once

#include <QString>
#include <QWidget>

#include "support/platform.h"

class QLineEdit;
class QToolButton;

namespace trensil {

class grid_file_selector : public QWidget {
    Q_OBJECT
public:
    explicit grid_file_selector(platform& ui, QWidget* parent = nullptr);
    QString file() const;
    void set_file(const QString& path);
    // Asks for a grid file with the file dialog; raises file_changed unless cancelled.
    void choose_file();

    // The file patterns offered by the dialog.
    static constexpr const char* grid_file_filter =
        "Grid files (*.tif;*.tiff;*.ers;*.grd;*.asc;*.nc)|*.tif;*.tiff;*.ers;*.grd;*.asc;*.nc|"
        "All files (*.*)|*.*";

signals:
    void file_changed(const QString& path);

private:
    platform& ui_;
    QLineEdit* path_ = nullptr;
    QToolButton* browse_ = nullptr;
};

}  // namespace trensil
