#include "support/huge_text_file.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "support/scratch_dir.h"

namespace trensil {
namespace {

using testing::read_all;
using testing::scratch_dir;
using testing::write_all;

// Runs `action` and returns the number of the HugeTextFile failure it raised (0 for none).
template <class F>
long failure_of(F action) {
    try {
        action();
    } catch (const huge_text_file_error& e) {
        return e.number();
    }
    return 0;
}

TEST(huge_text_file, reads_lines_across_buffer_refills) {
    scratch_dir dir("htf_read");
    const std::string path = dir.file("lines.txt");
    const std::string long_line(1000, 'q');
    write_all(path, "first\r\nsecond\n\n" + long_line + "\r\nlast without end");

    HugeTextFile f;
    EXPECT_TRUE(f.OpenFile(path, HugeTextFile::mode_read, 0, 0, 7));
    EXPECT_TRUE(f.IsOpen());
    EXPECT_EQ(f.Filename(), path);
    EXPECT_GE(f.FileHandle(), 0);
    EXPECT_EQ(f.FileLen(), static_cast<std::int64_t>(read_all(path).size()));
    EXPECT_EQ(f.ReadLine(), "first");
    EXPECT_EQ(f.ReadLine(), "second");
    EXPECT_EQ(f.ReadLine(), "");
    EXPECT_EQ(f.ReadLine(), long_line);  // longer than the buffer, returned whole
    EXPECT_FALSE(f.Eof());
    EXPECT_EQ(f.ReadLine(), "last without end");
    EXPECT_TRUE(f.Eof());
    EXPECT_EQ(f.LineCount(), 5);

    // Reading past the end fails and leaves the file open.
    EXPECT_EQ(failure_of([&] { f.ReadLine(); }), 45608);
    EXPECT_TRUE(f.IsOpen());

    f.Rewind();
    EXPECT_EQ(f.LineCount(), 0);
    f.SkipLines(3);
    EXPECT_EQ(f.ReadLine(), long_line);
    EXPECT_EQ(failure_of([&] { f.SkipLines(5); }), 45608);

    f.CloseFile();
    EXPECT_FALSE(f.IsOpen());
    EXPECT_EQ(f.FileHandle(), -1);
    EXPECT_EQ(f.Filename(), "");
    EXPECT_EQ(f.LineCount(), 0);
    EXPECT_EQ(f.FileLen(), 0);
}

TEST(huge_text_file, eof_follows_a_terminated_last_line_and_an_empty_file) {
    scratch_dir dir("htf_eof");
    write_all(dir.file("one.txt"), "only\r\n");
    HugeTextFile f;
    f.OpenFile(dir.file("one.txt"));
    EXPECT_FALSE(f.Eof());
    EXPECT_EQ(f.ReadLine(), "only");
    EXPECT_TRUE(f.Eof());
    f.CloseFile();

    write_all(dir.file("empty.txt"), "");
    f.OpenFile(dir.file("empty.txt"));
    EXPECT_TRUE(f.Eof());
    EXPECT_EQ(failure_of([&] { f.ReadLine(); }), 45608);
}

TEST(huge_text_file, writes_crlf_or_lf_lines_through_a_small_buffer) {
    scratch_dir dir("htf_write");
    const std::string path = dir.file("out.txt");
    {
        HugeTextFile f;
        EXPECT_FALSE(f.OpenFile(path, HugeTextFile::mode_write, 0, 0, 4));
        f.WriteLine("alpha");
        f.WriteLine("");
        f.WriteBufferArray(std::vector<std::uint8_t>{'r', 'a', 'w'});
        f.WriteLine("beta");
        EXPECT_EQ(f.LineCount(), 3);
        EXPECT_EQ(f.FileLen(), 18);
        // Closed by the destructor, which flushes the buffer.
    }
    EXPECT_EQ(read_all(path), "alpha\r\n\r\nrawbeta\r\n");

    HugeTextFile f;
    EXPECT_TRUE(
        f.OpenFile(path, HugeTextFile::mode_append, 0, 0, 100, HugeTextFile::option_lf_only));
    f.WriteLine("gamma");
    f.CloseFile();
    EXPECT_EQ(read_all(path), "alpha\r\n\r\nrawbeta\r\ngamma\n");

    // Mode 2 starts the file anew.
    EXPECT_TRUE(f.OpenFile(path, HugeTextFile::mode_write));
    f.WriteLine("new");
    f.CloseFile();
    EXPECT_EQ(read_all(path), "new\r\n");
}

TEST(huge_text_file, wide_text_round_trips_per_line) {
    scratch_dir dir("htf_wide");
    const std::string path = dir.file("wide.txt");
    const std::string accented =
        "Gr\xC3\xB6\xC3\x9F"
        "e \xE2\x82\xAC \xF0\x9F\x98\x80";
    HugeTextFile f;
    f.OpenFile(path, HugeTextFile::mode_write, 0, 0, 5, HugeTextFile::option_wide);
    f.WriteLine(accented);
    // U+0A00 U+0100 are the bytes 00 0A 00 01: a line feed pair across a character boundary.
    f.WriteLine("\xE0\xA8\x80\xC4\x80");
    f.WriteLine("x");
    f.CloseFile();
    const std::string bytes = read_all(path);
    EXPECT_EQ(bytes.substr(0, 4), std::string("G\0r\0", 4));
    EXPECT_EQ(bytes.substr(bytes.size() - 6), std::string("x\0\r\0\n\0", 6));

    // An odd buffer size is made even so characters are never split by a full read.
    f.OpenFile(path, HugeTextFile::mode_read, 0, 0, 3, HugeTextFile::option_wide);
    EXPECT_EQ(f.ReadLine(), accented);
    EXPECT_EQ(f.ReadLine(), "\xE0\xA8\x80\xC4\x80");
    EXPECT_EQ(f.ReadLine(), "x");
    EXPECT_TRUE(f.Eof());
}

TEST(huge_text_file, refuses_operations_out_of_mode) {
    scratch_dir dir("htf_modes");
    const std::string path = dir.file("m.txt");
    HugeTextFile f;
    EXPECT_EQ(failure_of([&] { f.ReadLine(); }), 45613);
    EXPECT_EQ(failure_of([&] { f.WriteLine("x"); }), 45613);
    EXPECT_EQ(failure_of([&] { f.Rewind(); }), 45613);
    EXPECT_EQ(failure_of([&] { f.CloseFile(); }), 0);
    EXPECT_EQ(failure_of([&] { f.OpenFile(path, 2, 0, 0, 0); }), 45614);
    EXPECT_EQ(failure_of([&] { f.OpenFile(path, 4); }), 5);
    EXPECT_EQ(failure_of([&] { f.OpenFile(path); }), 45604);
    EXPECT_FALSE(f.IsOpen());

    f.OpenFile(path, HugeTextFile::mode_write);
    EXPECT_EQ(failure_of([&] { f.OpenFile(path); }), 45601);
    EXPECT_EQ(failure_of([&] { f.ReadLine(); }), 45610);
    EXPECT_EQ(failure_of([&] { f.Rewind(); }), 45611);
    EXPECT_FALSE(f.Eof());
    f.CloseFile();

    f.OpenFile(path, HugeTextFile::mode_append);
    EXPECT_EQ(failure_of([&] { f.Rewind(); }), 45611);
    f.CloseFile();

    f.OpenFile(path, HugeTextFile::mode_read);
    EXPECT_EQ(failure_of([&] { f.WriteLine("x"); }), 45612);
    EXPECT_EQ(failure_of([&] { f.WriteBufferArray({1}); }), 45612);
    f.CloseFile();

    EXPECT_EQ(failure_of([&] { f.OpenFile(path, 2, HugeTextFile::create_new); }), 45603);
    EXPECT_EQ(failure_of([&] { f.OpenFile(dir.file("none/x.txt"), 2); }), 45604);
    EXPECT_EQ(failure_of([&] { f.OpenFile(dir.path().string(), 2); }), 45602);
}

TEST(huge_text_file, offsets_past_four_gigabytes) {
    scratch_dir dir("htf_large");
    const std::string path = dir.file("sparse.txt");
    const std::int64_t hole = std::int64_t{5} << 30;  // 5 GiB, sparse
    const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    ASSERT_GE(fd, 0);
    const bool sized = ::ftruncate(fd, static_cast<off_t>(hole)) == 0;
    ::close(fd);
    ASSERT_TRUE(sized) << "the scratch file system takes no sparse file of 5 GiB";

    HugeTextFile f;
    EXPECT_TRUE(f.OpenFile(path, HugeTextFile::mode_append));
    f.WriteLine("end");
    EXPECT_EQ(f.FileLen(), hole + 5);
    f.CloseFile();
    f.OpenFile(path);
    EXPECT_EQ(f.FileLen(), hole + 5);
    EXPECT_EQ(f.FileLenHigh(), 1u);
    EXPECT_EQ(f.FileLenLow(), (1u << 30) + 5u);
}

}  // namespace
}  // namespace trensil
