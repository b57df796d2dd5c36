#include "support/huge_text_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace trensil {

static_assert(sizeof(off_t) >= 8, "file offsets must be 64-bit for files past 2 GB");

std::string huge_text_file_error_text(long number) {
    switch (number) {
        case htf_invalid_parameter:
            return "Invalid parameter.  Numeric Variant expected.";
        case htf_already_open:
            return "File already open.";
        case htf_open_failed:
            return "Error opening file.";
        case htf_file_exists:
            return "File already exists.";
        case htf_file_not_found:
            return "File not found.";
        case htf_seek_failed:
            return "Seek Error.";
        case htf_size_failed:
            return "GetFileSize Error.";
        case htf_read_failed:
            return "Read failure.";
        case htf_read_past_eof:
            return "Attempt to read past EOF.";
        case htf_write_failed:
            return "Write failure.";
        case htf_read_in_write_mode:
            return "Can't read file opened for writing.";
        case htf_rewind_in_write_mode:
            return "Can't rewind file opened for writing.";
        case htf_write_in_read_mode:
            return "Can't write file opened for reading.";
        case htf_not_open:
            return "File must be open for this operation.";
        case htf_bad_buffer_size:
            return "OpenFile BufferSize must be > 0.";
        default:
            return "Unknown error.";
    }
}

huge_text_file_error::huge_text_file_error(long number, std::string text)
    : std::runtime_error("Error " + std::to_string(number) + "\n" + text),
      number_(number),
      text_(std::move(text)) {}

huge_text_file_error::huge_text_file_error(long number)
    : huge_text_file_error(number, huge_text_file_error_text(number)) {}

huge_text_file_error huge_text_file_error::system_failure(int code) {
    const char* message = code > 0 ? std::strerror(code) : nullptr;
    return huge_text_file_error(code, message && *message ? message : "Unknown Error");
}

namespace {

// UTF-16 little-endian bytes to UTF-8; an unpaired surrogate becomes U+FFFD.
std::string utf8_from_utf16le(const std::string& bytes) {
    std::string out;
    auto put = [&out](std::uint32_t cp) {
        if (cp < 0x80) {
            out += static_cast<char>(cp);
        } else if (cp < 0x800) {
            out += static_cast<char>(0xC0 | (cp >> 6));
            out += static_cast<char>(0x80 | (cp & 0x3F));
        } else if (cp < 0x10000) {
            out += static_cast<char>(0xE0 | (cp >> 12));
            out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
            out += static_cast<char>(0x80 | (cp & 0x3F));
        } else {
            out += static_cast<char>(0xF0 | (cp >> 18));
            out += static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
            out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
            out += static_cast<char>(0x80 | (cp & 0x3F));
        }
    };
    const std::size_t units = bytes.size() / 2;
    auto unit = [&bytes](std::size_t i) {
        return static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[2 * i])) |
               static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[2 * i + 1])) << 8;
    };
    for (std::size_t i = 0; i < units; ++i) {
        const std::uint32_t u = unit(i);
        if (u >= 0xD800 && u < 0xDC00 && i + 1 < units && unit(i + 1) >= 0xDC00 &&
            unit(i + 1) < 0xE000) {
            put(0x10000 + ((u - 0xD800) << 10) + (unit(i + 1) - 0xDC00));
            ++i;
        } else if (u >= 0xD800 && u < 0xE000) {
            put(0xFFFD);
        } else {
            put(u);
        }
    }
    return out;
}

// UTF-8 to UTF-16 little-endian bytes; a malformed byte becomes U+FFFD.
std::string utf16le_from_utf8(const std::string& text) {
    std::string out;
    auto put_unit = [&out](std::uint32_t u) {
        out += static_cast<char>(u & 0xFF);
        out += static_cast<char>(u >> 8);
    };
    std::size_t i = 0;
    while (i < text.size()) {
        const auto c = static_cast<unsigned char>(text[i]);
        int extra = c < 0x80 ? 0 : (c >> 5) == 6 ? 1 : (c >> 4) == 14 ? 2 : (c >> 3) == 30 ? 3 : -1;
        std::uint32_t cp = extra == 0   ? c
                           : extra == 1 ? (c & 0x1Fu)
                           : extra == 2 ? (c & 0x0Fu)
                                        : (c & 0x07u);
        bool good = extra >= 0 && i + static_cast<std::size_t>(extra) < text.size();
        for (int k = 1; good && k <= extra; ++k) {
            const auto next = static_cast<unsigned char>(text[i + static_cast<std::size_t>(k)]);
            if ((next >> 6) != 2) good = false;
            cp = (cp << 6) | (next & 0x3Fu);
        }
        if (!good || cp > 0x10FFFF) {
            put_unit(0xFFFD);
            ++i;
            continue;
        }
        i += static_cast<std::size_t>(extra) + 1;
        if (cp >= 0x10000) {
            put_unit(0xD800 + ((cp - 0x10000) >> 10));
            put_unit(0xDC00 + ((cp - 0x10000) & 0x3FF));
        } else {
            put_unit(cp);
        }
    }
    return out;
}

}  // namespace

HugeTextFile::~HugeTextFile() {
    try {
        CloseFile();
    } catch (const huge_text_file_error&) {
        // A destructor has no one to tell; the descriptor was closed all the same.
    }
}

void HugeTextFile::require_open() const {
    if (fd_ == -1) throw huge_text_file_error(htf_not_open);
}

void HugeTextFile::CloseFile() {
    if (fd_ == -1) return;
    bool flushed = true;
    if (mode_ != mode_read) {
        try {
            flush();
        } catch (const huge_text_file_error&) {
            flushed = false;
        }
    }
    ::close(fd_);
    fd_ = -1;
    name_.clear();
    mode_ = 0;
    buffer_.clear();
    buffer_.shrink_to_fit();
    buffer_used_ = read_pos_ = 0;
    bytes_from_file_ = length_at_open_ = 0;
    hit_end_ = false;
    line_count_ = 0;
    if (!flushed) throw huge_text_file_error(htf_write_failed);
}

bool HugeTextFile::OpenFile(const std::string& name, int mode, int creation, int /*share*/,
                            long buffer_size, int options) {
    if (fd_ != -1) throw huge_text_file_error(htf_already_open);
    if (buffer_size < 1) throw huge_text_file_error(htf_bad_buffer_size);
    if (mode < mode_read || mode > mode_append || creation < creation_default ||
        creation > truncate_existing)
        throw huge_text_file_error(htf_invalid_parameter);
    if (creation == creation_default)
        creation = mode == mode_read    ? open_existing
                   : mode == mode_write ? create_always
                                        : open_always;

    int flags = (mode == mode_read ? O_RDONLY : O_WRONLY) | O_CLOEXEC;
    switch (creation) {
        case create_new:
            flags |= O_CREAT | O_EXCL;
            break;
        case create_always:
            flags |= O_CREAT | O_TRUNC;
            break;
        case open_always:
            flags |= O_CREAT;
            break;
        case truncate_existing:
            flags |= O_TRUNC;
            break;
        default:
            break;
    }
    struct stat before {};
    const bool existed = ::stat(name.c_str(), &before) == 0;
    int fd;
    do {
        fd = ::open(name.c_str(), flags, 0666);
    } while (fd == -1 && errno == EINTR);
    if (fd == -1) {
        if (errno == EEXIST) throw huge_text_file_error(htf_file_exists);
        if (errno == ENOENT) throw huge_text_file_error(htf_file_not_found);
        throw huge_text_file_error(htf_open_failed);
    }
    if (mode == mode_append && ::lseek(fd, 0, SEEK_END) == -1) {
        ::close(fd);
        throw huge_text_file_error(htf_seek_failed);
    }
    struct stat after {};
    if (::fstat(fd, &after) != 0) {
        ::close(fd);
        throw huge_text_file_error(htf_size_failed);
    }

    wide_ = (options & option_wide) != 0;
    lf_only_ = (options & option_lf_only) != 0;
    std::size_t size = static_cast<std::size_t>(buffer_size);
    if (wide_ && size % 2 == 1) ++size;  // whole characters in every buffer of a full read
    buffer_.assign(size, '\0');
    fd_ = fd;
    name_ = name;
    mode_ = mode;
    buffer_used_ = read_pos_ = 0;
    bytes_from_file_ = 0;
    length_at_open_ = static_cast<std::int64_t>(after.st_size);
    hit_end_ = false;
    line_count_ = 0;
    return existed;
}

std::size_t HugeTextFile::fill() {
    ssize_t got;
    do {
        got = ::read(fd_, buffer_.data(), buffer_.size());
    } while (got == -1 && errno == EINTR);
    if (got < 0) throw huge_text_file_error(htf_read_failed);
    buffer_used_ = static_cast<std::size_t>(got);
    read_pos_ = 0;
    bytes_from_file_ += got;
    if (got == 0) hit_end_ = true;
    return buffer_used_;
}

bool HugeTextFile::Eof() const {
    if (fd_ == -1 || mode_ != mode_read) return false;
    return read_pos_ >= buffer_used_ && (hit_end_ || bytes_from_file_ >= length_at_open_);
}

// Looks for the line end in the buffer from the read position. On a hit, the bytes before it
// are added to `bytes` and the read position moves past it; otherwise the rest of the buffer is
// added and the buffer is used up.
bool HugeTextFile::find_terminator(std::string& bytes) {
    const char* start = buffer_.data() + read_pos_;
    const std::size_t avail = buffer_used_ - read_pos_;
    if (!wide_) {
        const void* hit = std::memchr(start, '\n', avail);
        const std::size_t take =
            hit ? static_cast<std::size_t>(static_cast<const char*>(hit) - start) : avail;
        bytes.append(start, take);
        read_pos_ += hit ? take + 1 : take;
        return hit != nullptr;
    }
    // Wide text: the line end is the character 10, the byte pair 0A 00 on a character boundary.
    // A pair split between two buffers leaves an odd byte count in `bytes`.
    std::size_t i = 0;
    if (bytes.size() % 2 == 1) {
        if (bytes.back() == '\n' && start[0] == '\0') {
            bytes.pop_back();
            read_pos_ += 1;
            return true;
        }
        i = 1;
    }
    for (; i + 1 < avail; i += 2) {
        if (start[i] == '\n' && start[i + 1] == '\0') {
            bytes.append(start, i);
            read_pos_ += i + 2;
            return true;
        }
    }
    bytes.append(start, avail);
    read_pos_ = buffer_used_;
    return false;
}

std::string HugeTextFile::ReadLine() {
    require_open();
    if (mode_ != mode_read) throw huge_text_file_error(htf_read_in_write_mode);
    if (Eof()) throw huge_text_file_error(htf_read_past_eof);
    std::string bytes;
    bool terminated = false;
    while (!terminated) {
        if (read_pos_ >= buffer_used_ && fill() == 0) break;
        terminated = find_terminator(bytes);
    }
    if (terminated) {
        if (!wide_ && !bytes.empty() && bytes.back() == '\r') bytes.pop_back();
        if (wide_ && bytes.size() >= 2 && bytes[bytes.size() - 2] == '\r' && bytes.back() == '\0')
            bytes.resize(bytes.size() - 2);
    }
    ++line_count_;
    return wide_ ? utf8_from_utf16le(bytes) : bytes;
}

void HugeTextFile::Rewind() {
    require_open();
    if (mode_ != mode_read) throw huge_text_file_error(htf_rewind_in_write_mode);
    if (::lseek(fd_, 0, SEEK_SET) == -1) throw huge_text_file_error(htf_seek_failed);
    struct stat now {};
    if (::fstat(fd_, &now) == 0) length_at_open_ = static_cast<std::int64_t>(now.st_size);
    buffer_used_ = read_pos_ = 0;
    bytes_from_file_ = 0;
    hit_end_ = false;
    line_count_ = 0;
}

void HugeTextFile::SkipLines(long count) {
    for (long i = 0; i < count; ++i) ReadLine();
}

void HugeTextFile::flush() {
    std::size_t done = 0;
    while (done < buffer_used_) {
        const ssize_t put = ::write(fd_, buffer_.data() + done, buffer_used_ - done);
        if (put == -1 && errno == EINTR) continue;
        if (put <= 0) throw huge_text_file_error(htf_write_failed);
        done += static_cast<std::size_t>(put);
    }
    buffer_used_ = 0;
}

void HugeTextFile::put_bytes(const char* bytes, std::size_t count) {
    while (count > 0) {
        const std::size_t room = buffer_.size() - buffer_used_;
        const std::size_t take = count < room ? count : room;
        std::memcpy(buffer_.data() + buffer_used_, bytes, take);
        buffer_used_ += take;
        bytes += take;
        count -= take;
        if (buffer_used_ == buffer_.size()) flush();
    }
}

void HugeTextFile::WriteLine(const std::string& text) {
    require_open();
    if (mode_ == mode_read) throw huge_text_file_error(htf_write_in_read_mode);
    const std::string line = text + (lf_only_ ? "\n" : "\r\n");
    const std::string bytes = wide_ ? utf16le_from_utf8(line) : line;
    put_bytes(bytes.data(), bytes.size());
    ++line_count_;
}

void HugeTextFile::WriteBufferArray(const std::uint8_t* bytes, std::size_t count) {
    require_open();
    if (mode_ == mode_read) throw huge_text_file_error(htf_write_in_read_mode);
    put_bytes(reinterpret_cast<const char*>(bytes), count);
}

void HugeTextFile::WriteBufferArray(const std::vector<std::uint8_t>& bytes) {
    WriteBufferArray(bytes.data(), bytes.size());
}

std::int64_t HugeTextFile::FileLen() const {
    if (fd_ == -1) return 0;
    struct stat now {};
    if (::fstat(fd_, &now) != 0) throw huge_text_file_error(htf_size_failed);
    const auto on_disk = static_cast<std::int64_t>(now.st_size);
    if (mode_ == mode_read) return on_disk;
    // What is still in the buffer lands at the current offset: the end for new and appended
    // files, or part-way through an existing file opened without emptying it.
    const off_t at = ::lseek(fd_, 0, SEEK_CUR);
    const std::int64_t end =
        static_cast<std::int64_t>(at) + static_cast<std::int64_t>(buffer_used_);
    return end > on_disk ? end : on_disk;
}

}  // namespace trensil
