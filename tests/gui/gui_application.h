// One application for the whole offscreen test program, whichever test comes first. Qt's runtime
// folder is one of the program's own scratch folders, removed at exit, instead of one it would
// leave in the system's temporary folder. The application is destroyed when the tests end, not
// by the C library's exit handlers: those would first destroy the list in which the pointing
// device of synthetic mouse events is registered, and the application's destructor then deletes
// the device through that list.
#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <cstdlib>
#include <filesystem>

#include "../support/scratch_dir.h"

namespace trensil {

class application_environment : public ::testing::Environment {
public:
    void TearDown() override { delete QApplication::instance(); }
};

inline void application() {
    if (QApplication::instance()) return;
    const std::filesystem::path& runtime = testing::process_scratch_dir().path();
    std::filesystem::permissions(runtime, std::filesystem::perms::owner_all,
                                 std::filesystem::perm_options::replace);
    ::setenv("XDG_RUNTIME_DIR", runtime.c_str(), 1);
    static int argc = 1;
    static char name[] = "test_gui";
    static char* argv[] = {name, nullptr};
    new QApplication(argc, argv);
    // Environments added while the tests run are torn down with the others at the end.
    ::testing::AddGlobalTestEnvironment(new application_environment);
}

}  // namespace trensil
