// trensil [MODEL.qvx] [--plan] [--screenshot OUT.png]
// Opens the modelling window, on a model when one is given. With --screenshot the window's
// graphs (the section, or the plan with --plan) are drawn and saved as a PNG, and the program
// ends: 0 when the picture was written, 1 when the model could not be read or the picture not
// written (the reason on standard error).
#include <QApplication>
#include <QImage>
#include <iostream>
#include <string>

#include "modelling_window.h"
#include "qt_platform.h"
#include "qt_settings_store.h"

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QApplication::setOrganizationName("Ostrand");
    QApplication::setApplicationName("Trensil");

    std::string model_path, screenshot;
    bool plan = false;
    const QStringList args = QApplication::arguments();
    for (int i = 1; i < args.size(); ++i) {
        const std::string a = args[i].toStdString();
        if (a == "--plan") {
            plan = true;
        } else if (a == "--screenshot" && i + 1 < args.size()) {
            screenshot = args[++i].toStdString();
        } else if (a == "--help" || a == "-h") {
            std::cout << "usage: trensil [MODEL.qvx] [--plan] [--screenshot OUT.png]\n";
            return 0;
        } else if (!a.empty() && a[0] == '-') {
            std::cerr << "unknown option " << a << "\n"
                      << "usage: trensil [MODEL.qvx] [--plan] [--screenshot OUT.png]\n";
            return 2;
        } else {
            model_path = a;
        }
    }

    trensil::qt_platform ui;
    ui.console = !screenshot.empty();
    trensil::qt_settings_store settings;
    trensil::modelling_window window(ui, settings);
    ui.set_owner(&window);
    window.show();
    QApplication::processEvents();

    int status = 0;
    if (!model_path.empty()) status = trensil::open_model_file(window.workspace(), model_path);
    if (plan && status == 0) trensil::command_show_section_or_plan(window.workspace());

    if (screenshot.empty()) return QApplication::exec();

    QApplication::processEvents();
    if (status != 0) return 1;
    const QImage image = window.capture_graphs();
    if (!image.save(QString::fromStdString(screenshot), "PNG")) {
        std::cerr << "The picture could not be written to " << screenshot << "\n";
        return 1;
    }
    return 0;
}
