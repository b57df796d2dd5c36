// One application for the whole offscreen test program, whichever test comes first. It is
// deleted when the tests end, before the program's static objects go: Qt's own tables (the input
// devices that simulated clicks create) must outlive it.
#pragma once

#include <gtest/gtest.h>

#include <QApplication>

namespace trensil {

class application_environment : public ::testing::Environment {
public:
    void TearDown() override { delete QApplication::instance(); }
};

inline ::testing::Environment* const application_teardown =
    ::testing::AddGlobalTestEnvironment(new application_environment);

inline void application() {
    if (QApplication::instance()) return;
    static int argc = 1;
    static char name[] = "test_gui";
    static char* argv[] = {name, nullptr};
    new QApplication(argc, argv);
}

}  // namespace trensil
