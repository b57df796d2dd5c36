// Replacing a file through atomic_file: what the replaced file was (its permissions, a link to
// it) survives, a name at the longest a folder allows can be written, and nothing is left beside
// it. (A failed write keeping the old file is tested with the model and project writers.)
#include "support/atomic_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>

#include "support/scratch_dir.h"

namespace trensil {
namespace {

namespace fs = std::filesystem;
using testing::read_all;
using testing::scratch_dir;
using testing::write_all;

bool replace(const std::string& path, const std::string& text, std::string* error = nullptr) {
    atomic_file out(path);
    out.stream() << text;
    const bool done = out.commit();
    if (error) *error = out.error();
    return done;
}

mode_t mode_of(const std::string& path) {
    struct stat info {};
    ::stat(path.c_str(), &info);
    return info.st_mode & 07777;
}

// Only the names given are in the folder: no temporary file was left behind.
std::size_t entries(const fs::path& folder) {
    return static_cast<std::size_t>(
        std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
}

TEST(atomic_file, replaced_file_keeps_its_permissions) {
    scratch_dir dir("atomic_mode");
    const std::string path = dir.file("private.qvx");
    write_all(path, "old");
    ::chmod(path.c_str(), 0600);
    ASSERT_TRUE(replace(path, "new"));
    EXPECT_EQ(read_all(path), "new");
    EXPECT_EQ(mode_of(path), 0600u);
    ::chmod(path.c_str(), 0640);
    ASSERT_TRUE(replace(path, "newer"));
    EXPECT_EQ(mode_of(path), 0640u);
    EXPECT_EQ(entries(dir.path()), 1u);
}

TEST(atomic_file, symbolic_link_is_written_through_to_its_target) {
    scratch_dir dir("atomic_link");
    fs::create_directory(dir.path() / "real");
    const std::string real = dir.file("real/model.qvx");
    write_all(real, "old");
    // A relative link, and a link to that link.
    fs::create_symlink("real/model.qvx", dir.path() / "link.qvx");
    fs::create_symlink("link.qvx", dir.path() / "link2.qvx");
    ASSERT_TRUE(replace(dir.file("link2.qvx"), "new"));
    EXPECT_TRUE(fs::is_symlink(dir.path() / "link.qvx"));
    EXPECT_TRUE(fs::is_symlink(dir.path() / "link2.qvx"));
    EXPECT_EQ(read_all(real), "new");
    EXPECT_EQ(entries(dir.path() / "real"), 1u);

    // A link to a file not yet there makes that file.
    fs::create_symlink("real/later.qvx", dir.path() / "dangling.qvx");
    ASSERT_TRUE(replace(dir.file("dangling.qvx"), "made"));
    EXPECT_TRUE(fs::is_symlink(dir.path() / "dangling.qvx"));
    EXPECT_EQ(read_all(dir.file("real/later.qvx")), "made");

    // Links in a circle cannot be written, and say so.
    fs::create_symlink("loop_b", dir.path() / "loop_a");
    fs::create_symlink("loop_a", dir.path() / "loop_b");
    std::string error;
    EXPECT_FALSE(replace(dir.file("loop_a"), "x", &error));
    EXPECT_FALSE(error.empty());
}

TEST(atomic_file, target_name_of_250_characters_is_written) {
    scratch_dir dir("atomic_long");
    const std::string path = dir.file(std::string(246, 'n') + ".qvx");
    ASSERT_TRUE(replace(path, "first"));
    ASSERT_TRUE(replace(path, "second"));
    EXPECT_EQ(read_all(path), "second");
    EXPECT_EQ(entries(dir.path()), 1u);
}

}  // namespace
}  // namespace trensil
