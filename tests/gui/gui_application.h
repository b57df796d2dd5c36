// One application for the whole offscreen test program, whichever test comes first.
#pragma once

#include <QApplication>

namespace trensil {

// The application lives until the process ends and is never destroyed: destroying it among the
// exit handlers, after the input devices the simulated pointer and keys registered, crashes.
inline void application() {
    if (QApplication::instance()) return;
    static int argc = 1;
    static char name[] = "test_gui";
    static char* argv[] = {name, nullptr};
    static QApplication* app = new QApplication(argc, argv);
    (void)app;
}

}  // namespace trensil
