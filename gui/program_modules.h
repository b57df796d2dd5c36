// The program information dialogs: the about box, and the list of the program's modules with
// their versions (the program, Qt, GDAL, the compiler and standard library) and the system it
// runs on, which a user can copy into a report.
//
//   show_about_box(this);           // has a button that opens the list
//   show_program_modules(this);
#pragma once

#include <QDialog>
#include <string>
#include <vector>

namespace trensil {

struct program_module {
    std::string name;
    std::string version;
    std::string detail;
};

// The modules and system data, in the order the list shows them.
std::vector<program_module> program_modules();

// The list as tab-separated text, one module a line.
std::string program_modules_text(const std::vector<program_module>& modules);

// "Form_about": the program's name, version and purpose, with "Modules..." and "OK".
class about_dialog : public QDialog {
    Q_OBJECT
public:
    explicit about_dialog(QWidget* parent = nullptr);
};

// "Form_program_modules": the table `Grid_modules`, "Copy" (to the clipboard) and "Close".
class modules_dialog : public QDialog {
    Q_OBJECT
public:
    explicit modules_dialog(QWidget* parent = nullptr);
};

void show_about_box(QWidget* parent);
void show_program_modules(QWidget* parent);

}  // namespace trensil
