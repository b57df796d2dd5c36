// One application for the whole offscreen test program, whichever test comes first.
#pragma once

#include <QApplication>

namespace trensil {

inline void application() {
    if (QApplication::instance()) return;
    static int argc = 1;
    static char name[] = "test_gui";
    static char* argv[] = {name, nullptr};
    static QApplication app(argc, argv);
}

}  // namespace trensil
