// trensil [PROJECT.qvj | MODEL.qvx] [--plan] [--screenshot OUT.png] [--script STEPS]
// With no file, or with a project file, opens the project window (on that project). With a
// model file, opens the modelling window on it. With --screenshot the window (for a model: its
// graphs, the section or with --plan the plan) is drawn and saved as a PNG, and the program
// ends: 0 when the picture was written, 1 when the file could not be read or the picture not
// written (the reason on standard error). With --script the steps of the file are run on the
// windows once they are up (gui/interface_script.h).
//
// While windows hold unsaved work they keep recovery copies in the user's state folder; at
// start-up the copies that runs which ended uncleanly left behind are offered back.
#include <QApplication>
#include <QImage>
#include <QTimer>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "interface_script.h"
#include "modelling_window.h"
#include "project_window.h"
#include "qt_platform.h"
#include "qt_settings_store.h"
#include "recovery_support.h"
#include "support/paths.h"

namespace {
constexpr const char* usage =
    "usage: trensil [PROJECT.qvj | MODEL.qvx] [--plan] [--screenshot OUT.png] [--script STEPS]\n";

bool is_project_file(const std::string& path) {
    std::string ext = trensil::extension_part(path);
    for (char& c : ext) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return ext == "qvj";
}

int save_picture(const QImage& image, const std::string& path) {
    if (!image.save(QString::fromStdString(path), "PNG")) {
        std::cerr << "The picture could not be written to " << path << "\n";
        return 1;
    }
    return 0;
}
}  // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QApplication::setOrganizationName("Ostrand");
    QApplication::setApplicationName("Trensil");

    std::string file, screenshot, script;
    bool plan = false;
    const QStringList args = QApplication::arguments();
    for (int i = 1; i < args.size(); ++i) {
        const std::string a = args[i].toStdString();
        if (a == "--plan") {
            plan = true;
        } else if (a == "--screenshot" && i + 1 < args.size()) {
            screenshot = args[++i].toStdString();
        } else if (a == "--script" && i + 1 < args.size()) {
            script = args[++i].toStdString();
        } else if (a == "--help" || a == "-h") {
            std::cout << usage;
            return 0;
        } else if (!a.empty() && a[0] == '-') {
            std::cerr << "unknown option " << a << "\n" << usage;
            return 2;
        } else {
            file = a;
        }
    }

    trensil::qt_platform ui;
    ui.console = !screenshot.empty();
    trensil::qt_settings_store settings;
    int status = 0;

    std::vector<trensil::interface_step> steps;
    if (!script.empty()) {
        std::string error;
        if (!trensil::read_interface_script(script, steps, error)) {
            std::cerr << error << "\n";
            return 2;
        }
        trensil::start_answering(steps);
    }
    // The steps run once the event loop runs, after the file is open.
    auto run_steps = [&steps] {
        if (steps.empty()) return;
        QTimer::singleShot(0, [&steps] {
            if (!trensil::run_interface_steps(steps)) QApplication::exit(1);
        });
    };
    // A picture run keeps no copies and offers none.
    std::unique_ptr<trensil::recovery_session> recovery;
    if (screenshot.empty()) {
        recovery = std::make_unique<trensil::recovery_session>(trensil::recovery_folder());
        if (recovery->usable()) trensil::use_recovery_session(recovery.get());
    }

    if (file.empty() || is_project_file(file)) {
        trensil::project_window window(ui, settings);
        ui.set_owner(&window);
        window.show();
        QApplication::processEvents();
        trensil::offer_recovery_at_start(ui, settings, &window, file);
        if (!file.empty()) status = trensil::open_project_file(window.workspace(), file);
        run_steps();
        if (screenshot.empty()) return QApplication::exec();
        QApplication::processEvents();
        return status != 0 ? 1 : save_picture(window.capture(), screenshot);
    }

    trensil::modelling_window window(ui, settings);
    ui.set_owner(&window);
    window.show();
    QApplication::processEvents();
    trensil::offer_recovery_at_start(ui, settings, nullptr, file);
    status = trensil::open_model_file(window.workspace(), file);
    if (plan && status == 0) trensil::command_show_section_or_plan(window.workspace());
    run_steps();
    if (screenshot.empty()) return QApplication::exec();
    QApplication::processEvents();
    return status != 0 ? 1 : save_picture(window.capture_graphs(), screenshot);
}
