// Reads and writes text files of any size line by line, through a buffer of its own on a raw
// file descriptor (64-bit offsets, so files past 2 GB work).
//
//   HugeTextFile in;
//   in.OpenFile("/data/line.csv");                   // mode 1: read an existing file
//   while (!in.Eof()) std::string line = in.ReadLine();
//
//   HugeTextFile out;
//   out.OpenFile("/data/out.csv", HugeTextFile::mode_write);
//   out.WriteLine("x,y");                             // ended by CR LF
//   out.CloseFile();
//
// Unlike the rest of the program this class reports failures by throwing huge_text_file_error,
// whose description is "Error ", the number, a line break and the text of the table in
// huge_text_file_error_text(); callers catch it. The end-of-file property is `Eof()`, since the
// C library reserves the name EOF for a macro.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

namespace trensil {

// The failure numbers of HugeTextFile.
enum huge_text_file_code : long {
    htf_invalid_parameter = 5,
    htf_already_open = 45601,
    htf_open_failed = 45602,
    htf_file_exists = 45603,
    htf_file_not_found = 45604,
    htf_seek_failed = 45605,
    htf_size_failed = 45606,
    htf_read_failed = 45607,
    htf_read_past_eof = 45608,
    htf_write_failed = 45609,
    htf_read_in_write_mode = 45610,
    htf_rewind_in_write_mode = 45611,
    htf_write_in_read_mode = 45612,
    htf_not_open = 45613,
    htf_bad_buffer_size = 45614,
};

// The text of a failure number: the table's text, or "Unknown error." for any other number.
std::string huge_text_file_error_text(long number);

class huge_text_file_error : public std::runtime_error {
public:
    // A failure of the table.
    explicit huge_text_file_error(long number);
    // A failure of the system, numbered by its code: its system message, or "Unknown Error".
    static huge_text_file_error system_failure(int code);

    long number() const { return number_; }
    const std::string& text() const { return text_; }
    // "Error " number, a line break, text; the same as what().
    std::string description() const { return what(); }
    static const char* source() { return "HugeTextFile"; }

private:
    huge_text_file_error(long number, std::string text);
    long number_;
    std::string text_;
};

class HugeTextFile {
public:
    enum open_mode : int { mode_read = 1, mode_write = 2, mode_append = 3 };
    // What to do when the file exists or not; 0 takes the mode's rule: reading opens an
    // existing file, writing creates anew, appending opens or creates.
    enum creation_rule : int {
        creation_default = 0,
        create_new = 1,         // fails with 45603 when the file exists
        create_always = 2,      // created, or emptied when it exists
        open_existing = 3,      // fails with 45604 when the file is missing
        open_always = 4,        // opened, or created when missing
        truncate_existing = 5,  // emptied; fails when missing
    };
    // Options, or-ed: text held as UTF-16 little-endian characters in the file (each line
    // converted from and to UTF-8), and lines written with a line feed alone.
    enum option_flag : int { option_wide = 1, option_lf_only = 2 };

    HugeTextFile() = default;
    ~HugeTextFile();  // closes the file, swallowing any failure
    HugeTextFile(const HugeTextFile&) = delete;
    HugeTextFile& operator=(const HugeTextFile&) = delete;

    // Flushes a file opened for writing, closes it, clears name and counters. Nothing happens
    // on a closed object.
    void CloseFile();
    // Opens `name`; true when the file existed before. Appending starts at the end. `share` is
    // accepted for the caller's sake: POSIX files are not locked against other openers.
    bool OpenFile(const std::string& name, int mode = mode_read, int creation = creation_default,
                  int share = 0, long buffer_size = 65536, int options = 0);
    // The next line without its line feed, and without a carriage return just before it; a last
    // line with no line feed is returned as it stands.
    std::string ReadLine();
    // Back to the start of a file opened for reading; the line count starts again at 0.
    void Rewind();
    // Reads past `count` lines.
    void SkipLines(long count);
    // Adds the text and the line end to the buffer, writing the buffer out when it is full.
    void WriteLine(const std::string& text);
    // Writes the bytes as they are, through the buffer.
    void WriteBufferArray(const std::vector<std::uint8_t>& bytes);
    void WriteBufferArray(const std::uint8_t* bytes, std::size_t count);

    // True when a file opened for reading has no byte left to read.
    bool Eof() const;
    int FileHandle() const { return fd_; }
    // Length of the file in bytes (for a file being written, what it will be once flushed);
    // also as its low and high 32-bit halves. 0 when closed.
    std::int64_t FileLen() const;
    std::uint32_t FileLenLow() const { return static_cast<std::uint32_t>(FileLen()); }
    std::uint32_t FileLenHigh() const { return static_cast<std::uint32_t>(FileLen() >> 32); }
    const std::string& Filename() const { return name_; }
    bool IsOpen() const { return fd_ != -1; }
    // Lines read or written since the file was opened (or rewound).
    long LineCount() const { return line_count_; }

private:
    void require_open() const;
    std::size_t fill();
    void flush();
    void put_bytes(const char* bytes, std::size_t count);
    bool find_terminator(std::string& bytes);

    int fd_ = -1;
    std::string name_;
    int mode_ = 0;
    bool wide_ = false;
    bool lf_only_ = false;
    std::vector<char> buffer_;
    std::size_t buffer_used_ = 0;  // bytes held: read but not taken, or waiting to be written
    std::size_t read_pos_ = 0;
    std::int64_t bytes_from_file_ = 0;  // bytes read from the file so far
    std::int64_t length_at_open_ = 0;
    bool hit_end_ = false;
    long line_count_ = 0;
};

}  // namespace trensil
