// One application for the whole offscreen test program, whichever test comes first. Qt's runtime
// folder is one of the program's own scratch folders, removed at exit, instead of one it would
// leave in the system's temporary folder. The application is deleted when the tests end, before
// the program's static objects go: Qt's own tables (the input devices that simulated clicks
// create) must outlive it.
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

inline ::testing::Environment* const application_teardown =
    ::testing::AddGlobalTestEnvironment(new application_environment);

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
}

}  // namespace trensil
