// One application for the whole offscreen test program, whichever test comes first. It is never
// destroyed: the pointing device that synthetic mouse events create is registered in a list that
// the C library's exit handlers would destroy before the application, whose destructor then
// deletes the device through that list.
#pragma once

#include <QApplication>

namespace trensil {

inline void application() {
    if (QApplication::instance()) return;
    static int argc = 1;
    static char name[] = "test_gui";
    static char* argv[] = {name, nullptr};
    static QApplication* app = new QApplication(argc, argv);
    (void)app;
}

}  // namespace trensil
