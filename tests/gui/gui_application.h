// One application for the whole offscreen test program, whichever test comes first. It is
// destroyed when the tests end, before the program's exit handlers: destroyed among them, after
// the input devices that the simulated pointer and keys registered, it crashes.
#pragma once

#include <gtest/gtest.h>

#include <QApplication>

namespace trensil {

inline void application() {
    if (QApplication::instance()) return;
    static int argc = 1;
    static char name[] = "test_gui";
    static char* argv[] = {name, nullptr};
    struct application_environment : ::testing::Environment {
        QApplication* app = nullptr;
        void TearDown() override { delete app; }
    };
    auto* environment = new application_environment;
    environment->app = new QApplication(argc, argv);
    ::testing::AddGlobalTestEnvironment(environment);
}

}  // namespace trensil
