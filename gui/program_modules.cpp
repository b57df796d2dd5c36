#include "program_modules.h"

#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QSettings>
#include <QSysInfo>
#include <QTableWidget>
#include <QThread>
#include <QVBoxLayout>
#include <QtGlobal>

#include "control_access.h"
#include "grid/gdal_grid.h"
#include "program_version.h"

namespace trensil {

namespace {
std::string compiler_version() {
#if defined(__clang__)
    return "Clang " __clang_version__;
#elif defined(__GNUC__)
    return "GCC " __VERSION__;
#elif defined(_MSC_VER)
    return "MSVC " + std::to_string(_MSC_VER);
#else
    return "unknown";
#endif
}

std::string standard_library() {
#if defined(_GLIBCXX_RELEASE)
    return "libstdc++ " + std::to_string(_GLIBCXX_RELEASE) + " (" + std::to_string(__GLIBCXX__) +
           ")";
#elif defined(_LIBCPP_VERSION)
    return "libc++ " + std::to_string(_LIBCPP_VERSION);
#else
    return "unknown";
#endif
}
}  // namespace

std::vector<program_module> program_modules() {
    const std::string built_with_qt = QT_VERSION_STR;
    std::vector<program_module> modules = {
        {"Trensil", TRENSIL_VERSION, QApplication::applicationFilePath().toStdString()},
        {"Qt", qVersion(), "built with " + built_with_qt},
        {"GDAL", gdal_version_text(),
         "reads the grid files (GeoTIFF, ER Mapper, Surfer, ESRI ASCII, netCDF)"},
        {"Compiler", compiler_version(), "C++ " + std::to_string(__cplusplus)},
        {"C++ library", standard_library(), ""},
        {"Operating system", QSysInfo::prettyProductName().toStdString(),
         (QSysInfo::kernelType() + " " + QSysInfo::kernelVersion()).toStdString()},
        {"Processor", QSysInfo::currentCpuArchitecture().toStdString(),
         std::to_string(QThread::idealThreadCount()) + " cores"},
        {"Window system", QGuiApplication::platformName().toStdString(), ""},
        {"Settings", "", QSettings().fileName().toStdString()},
        {"Working directory", "", QDir::currentPath().toStdString()},
    };
    return modules;
}

std::string program_modules_text(const std::vector<program_module>& modules) {
    std::string text;
    for (const program_module& m : modules)
        text += m.name + "\t" + m.version + "\t" + m.detail + "\n";
    return text;
}

about_dialog::about_dialog(QWidget* parent) : QDialog(parent) {
    setObjectName("Form_about");
    setWindowTitle("About Trensil");
    auto* layout = new QVBoxLayout(this);
    auto* title = new QLabel(QString("<h2>Trensil</h2><p>Version %1</p>").arg(TRENSIL_VERSION));
    title->setObjectName("Label_about_version");
    layout->addWidget(title);
    auto* text = new QLabel(
        "Two-and-a-half-dimensional modelling of magnetic and gravity profiles: lines taken from "
        "survey data files or digitised on grids, bodies placed under them, their response "
        "computed as they are edited, and fitted to the data by inversion.");
    text->setWordWrap(true);
    text->setMinimumWidth(380);
    layout->addWidget(text);
    auto* buttons = new QHBoxLayout;
    auto* modules = new QPushButton("Modules...");
    modules->setObjectName("Command_modules");
    connect(modules, &QPushButton::clicked, this, [this] { show_program_modules(this); });
    auto* ok = new QPushButton("OK");
    ok->setObjectName("Command_about_ok");
    ok->setDefault(true);
    connect(ok, &QPushButton::clicked, this, &QDialog::accept);
    buttons->addWidget(modules);
    buttons->addStretch();
    buttons->addWidget(ok);
    layout->addLayout(buttons);
}

modules_dialog::modules_dialog(QWidget* parent) : QDialog(parent) {
    setObjectName("Form_program_modules");
    setWindowTitle("Program Modules");
    const std::vector<program_module> modules = program_modules();
    auto* layout = new QVBoxLayout(this);
    auto* table = new QTableWidget(static_cast<int>(modules.size()), 3);
    table->setObjectName("Grid_modules");
    table->setHorizontalHeaderLabels({"Module", "Version", "Details"});
    table->verticalHeader()->hide();
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    for (int r = 0; r < static_cast<int>(modules.size()); ++r) {
        const program_module& m = modules[static_cast<std::size_t>(r)];
        table->setItem(r, 0, new QTableWidgetItem(q(m.name)));
        table->setItem(r, 1, new QTableWidgetItem(q(m.version)));
        table->setItem(r, 2, new QTableWidgetItem(q(m.detail)));
    }
    const int row_height = table->fontMetrics().height() + 6;
    table->verticalHeader()->setDefaultSectionSize(row_height);
    table->resizeColumnsToContents();
    table->horizontalHeader()->setStretchLastSection(true);
    table->setMinimumSize(760, row_height * (table->rowCount() + 1) + 8);
    layout->addWidget(table);
    auto* buttons = new QHBoxLayout;
    auto* copy = new QPushButton("Copy");
    copy->setObjectName("Command_copy_modules");
    copy->setToolTip("Copy the list to the clipboard, for a report");
    connect(copy, &QPushButton::clicked, this, [modules] {
        if (QClipboard* clipboard = QApplication::clipboard())
            clipboard->setText(q(program_modules_text(modules)));
    });
    auto* close = new QPushButton("Close");
    close->setObjectName("Command_close_modules");
    close->setDefault(true);
    connect(close, &QPushButton::clicked, this, &QDialog::accept);
    buttons->addWidget(copy);
    buttons->addStretch();
    buttons->addWidget(close);
    layout->addLayout(buttons);
}

void show_about_box(QWidget* parent) {
    about_dialog dialog(parent);
    dialog.exec();
}

void show_program_modules(QWidget* parent) {
    modules_dialog dialog(parent);
    dialog.exec();
}

}  // namespace trensil
