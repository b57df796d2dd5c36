#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "support/ini_settings_store.h"
#include "support/memory_settings_store.h"
#include "support/scratch_dir.h"

namespace trensil {
namespace {

using testing::read_all;
using testing::scratch_dir;
using testing::write_all;

TEST(memory_settings_store, keeps_values_by_application_section_and_key) {
    memory_settings_store store;
    EXPECT_EQ(store.get_setting("Ostrand", "Trensil", "Dip"), "<no value>");
    store.save_setting("Ostrand", "Trensil", "Dip", "45");
    store.save_setting("Ostrand", "TrensilProject", "Dip", "30");
    EXPECT_EQ(store.get_setting("Ostrand", "Trensil", "Dip"), "45");
    EXPECT_EQ(store.get_setting("Ostrand", "TrensilProject", "Dip"), "30");
    EXPECT_EQ(store.get_setting("Other", "Trensil", "Dip"), "<no value>");
    store.save_setting("Ostrand", "Trensil", "Dip", "");
    EXPECT_EQ(store.get_setting("Ostrand", "Trensil", "Dip"), "");
    EXPECT_EQ(store.size(), 2u);
}

TEST(ini_settings_store, values_survive_a_new_store_on_the_same_file) {
    scratch_dir dir("ini_store");
    const std::string path = dir.file("sub/trensil.ini");
    {
        ini_settings_store store(path);
        EXPECT_EQ(store.get_setting("Ostrand", "Trensil", "Susc"), "<no value>");
        store.save_setting("Ostrand", "Trensil", "Susc", "50000");
        store.save_setting("Ostrand", "Trensil", "WorkingDirectory", " C:\\data\\lines ");
        store.save_setting("Ostrand", "TrensilProject", "FormSize", "800 600");
        store.save_setting("Ostrand", "Trensil", "Note", "two\r\nlines = yes");
        EXPECT_EQ(store.last_error(), "");
    }
    ini_settings_store again(path);
    EXPECT_EQ(again.get_setting("Ostrand", "Trensil", "Susc"), "50000");
    EXPECT_EQ(again.get_setting("Ostrand", "Trensil", "WorkingDirectory"), " C:\\data\\lines ");
    EXPECT_EQ(again.get_setting("Ostrand", "TrensilProject", "FormSize"), "800 600");
    EXPECT_EQ(again.get_setting("Ostrand", "Trensil", "Note"), "two\r\nlines = yes");
    EXPECT_EQ(again.get_setting("Ostrand", "TrensilProject", "Susc"), "<no value>");

    const std::string text = read_all(path);
    EXPECT_NE(text.find("[Ostrand/Trensil]\n"), std::string::npos);
    EXPECT_NE(text.find("Susc=50000\n"), std::string::npos);
    // Only the file itself is left in the folder: the temporary was renamed over it.
    int files = 0;
    for ([[maybe_unused]] const auto& e : std::filesystem::directory_iterator(dir.file("sub")))
        ++files;
    EXPECT_EQ(files, 1);
}

TEST(ini_settings_store, reads_a_hand_written_file) {
    scratch_dir dir("ini_hand");
    const std::string path = dir.file("hand.ini");
    write_all(path,
              "; settings\r\nstray=ignored\r\n[Ostrand/Trensil]\r\n  Dip = 45\r\nno equals\r\n"
              "\r\n[Ostrand/Other]\r\nDip=1\r\n");
    ini_settings_store store(path);
    EXPECT_EQ(store.get_setting("Ostrand", "Trensil", "Dip"), " 45");
    EXPECT_EQ(store.get_setting("Ostrand", "Other", "Dip"), "1");
    EXPECT_EQ(store.get_setting("", "", "stray"), "<no value>");
}

TEST(ini_settings_store, a_failed_write_is_reported_and_keeps_the_value_in_memory) {
    scratch_dir dir("ini_fail");
    // The store's path is a directory, so the file cannot be replaced.
    std::filesystem::create_directories(dir.file("taken"));
    ini_settings_store store(dir.file("taken"));
    store.save_setting("Ostrand", "Trensil", "Dip", "45");
    EXPECT_NE(store.last_error(), "");
    EXPECT_EQ(store.get_setting("Ostrand", "Trensil", "Dip"), "45");
}

}  // namespace
}  // namespace trensil
