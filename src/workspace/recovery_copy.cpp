#include "workspace/recovery_copy.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <system_error>

#include "io/model_line_source.h"
#include "support/atomic_file.h"
#include "support/paths.h"

namespace trensil {

namespace fs = std::filesystem;

namespace {

constexpr const char* session_extension = ".session";

const char* kind_name(recovery_kind kind) {
    return kind == recovery_kind::project ? "project" : "model";
}

const char* kind_extension(recovery_kind kind) {
    return kind == recovery_kind::project ? ".qvj" : ".qvx";
}

// FNV-1a: a short, stable name part that tells two files of the same name apart.
std::uint64_t path_hash(const std::string& text) {
    std::uint64_t h = 14695981039346656037ull;
    for (unsigned char c : text) {
        h ^= c;
        h *= 1099511628211ull;
    }
    return h;
}

std::string name_stem(const std::string& original_path) {
    if (original_path.empty()) return "untitled";
    std::string stem = file_name_part(drop_extension(original_path));
    for (char& c : stem) {
        const bool plain = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
                           (c >= '0' && c <= '9') || c == '-' || c == '.';
        if (!plain) c = '_';
    }
    if (stem.size() > 40) stem.resize(40);
    return stem.empty() ? "untitled" : stem;
}

std::string hex(std::uint64_t value, int digits) {
    char text[17];
    std::snprintf(text, sizeof text, "%0*llx", digits, static_cast<unsigned long long>(value));
    return text;
}

double now_seconds() {
    using namespace std::chrono;
    return duration<double>(system_clock::now().time_since_epoch()).count();
}

std::string local_time_text(double seconds) {
    const std::time_t t = static_cast<std::time_t>(seconds);
    std::tm parts{};
    localtime_r(&t, &parts);
    char text[32];
    std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &parts);
    return text;
}

}  // namespace

std::string recovery_trailer(const recovery_info& info) {
    std::ostringstream out;
    out.precision(17);
    out << recovery_section_head << "\r\n";
    out << "kind=" << kind_name(info.kind) << "\r\n";
    out << "original=" << info.original_path << "\r\n";
    out << "data_file=" << info.data_file << "\r\n";
    out << "saved_at=" << info.saved_at << "\r\n";
    out << "edits=" << info.edits << "\r\n";
    out << "undo_steps=" << info.undo_steps << "\r\n";
    out << "session=" << info.session << "\r\n";
    return out.str();
}

bool read_recovery_info(const std::string& path, recovery_info& info) {
    model_line_source lines;
    std::string error;
    if (!lines.open(path, error)) return false;
    while (!lines.at_end() && lines.next() != recovery_section_head) {
    }
    if (lines.at_end()) return false;
    recovery_info found;
    bool has_session = false;
    while (!lines.at_end()) {
        const std::string line = lines.next();
        const auto eq = line.find('=');
        if (eq == std::string::npos) continue;
        const std::string key = line.substr(0, eq);
        const std::string value = line.substr(eq + 1);
        if (key == "kind") {
            found.kind = value == "project" ? recovery_kind::project : recovery_kind::model;
        } else if (key == "original") {
            found.original_path = value;
        } else if (key == "data_file") {
            found.data_file = value;
        } else if (key == "saved_at") {
            found.saved_at = std::strtod(value.c_str(), nullptr);
        } else if (key == "edits") {
            found.edits = std::strtoull(value.c_str(), nullptr, 10);
        } else if (key == "undo_steps") {
            found.undo_steps = std::strtoull(value.c_str(), nullptr, 10);
        } else if (key == "session") {
            found.session = value;
            has_session = !value.empty();
        }
    }
    if (!has_session) return false;
    info = found;
    return true;
}

bool write_recovery_copy(const std::string& path, const std::string& text, std::string& error) {
    atomic_file out(path);
    if (!out.is_open()) {
        error = out.error();
        return false;
    }
    out.stream() << text;
    if (!out.commit()) {
        error = out.error();
        return false;
    }
    return true;
}

std::string recovery_key_path(const std::string& path) {
    if (path.empty()) return path;
    std::error_code ec;
    fs::path absolute = fs::absolute(path, ec);
    if (ec) return path;
    return absolute.lexically_normal().string();
}

recovery_session::recovery_session(std::string folder) : folder_(std::move(folder)) {
    std::error_code ec;
    fs::create_directories(folder_, ec);
    // The copies are the user's work: for the user's eyes only.
    fs::permissions(folder_, fs::perms::owner_all, fs::perm_options::replace, ec);
    using namespace std::chrono;
    const auto started =
        duration_cast<milliseconds>(system_clock::now().time_since_epoch()).count();
    // Two sessions of one process (tests) differ by their count.
    static std::atomic<int> sessions{0};
    id_ = std::to_string(::getpid()) + "-" + hex(static_cast<std::uint64_t>(started), 1) + "-" +
          std::to_string(++sessions);
    const std::string lock = (fs::path(folder_) / (id_ + session_extension)).string();
    const int fd = ::open(lock.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (fd < 0) return;
    if (::flock(fd, LOCK_EX | LOCK_NB) != 0) {
        ::close(fd);
        return;
    }
    lock_fd_ = fd;
}

recovery_session::~recovery_session() {
    if (lock_fd_ < 0) return;
    std::error_code ec;
    fs::remove(fs::path(folder_) / (id_ + session_extension), ec);
    ::close(lock_fd_);
}

std::string recovery_session::copy_path(recovery_kind kind, const std::string& original_path,
                                        int window) const {
    const std::string key = recovery_key_path(original_path);
    const std::string name = std::string(kind_name(kind)) + "_" + name_stem(key) + "_" +
                             hex(path_hash(key), 16) + "_" + id_ + "_w" + std::to_string(window) +
                             kind_extension(kind);
    return (fs::path(folder_) / name).string();
}

bool recovery_session::ended(const std::string& session) const {
    if (session == id_) return false;
    const std::string lock = (fs::path(folder_) / (session + session_extension)).string();
    const int fd = ::open(lock.c_str(), O_RDWR | O_CLOEXEC);
    if (fd < 0) return true;
    const bool free = ::flock(fd, LOCK_EX | LOCK_NB) == 0;
    if (free) {
        // The run is gone: its lock file is of no more use.
        std::error_code ec;
        fs::remove(lock, ec);
    }
    ::close(fd);
    return free;
}

std::vector<found_copy> ended_copies(const recovery_session& session, recovery_kind kind) {
    std::vector<found_copy> found;
    std::error_code ec;
    for (const auto& entry : fs::directory_iterator(session.folder(), ec)) {
        if (!entry.is_regular_file(ec)) continue;
        const std::string path = entry.path().string();
        if (entry.path().extension() != kind_extension(kind)) continue;
        found_copy copy{path, {}};
        if (!read_recovery_info(path, copy.info) || copy.info.kind != kind) continue;
        if (!session.ended(copy.info.session)) continue;
        found.push_back(std::move(copy));
    }
    std::sort(found.begin(), found.end(), [](const found_copy& a, const found_copy& b) {
        return a.info.saved_at > b.info.saved_at;
    });
    return found;
}

bool copy_is_newer(const found_copy& copy) {
    const std::string& original = copy.info.original_path;
    if (original.empty() || !file_exists(original)) return true;
    try {
        return copy.info.saved_at > file_date_time(original);
    } catch (const std::exception&) {
        return true;
    }
}

std::vector<found_copy> copies_to_offer(const recovery_session& session, recovery_kind kind,
                                        const std::string& original_path) {
    const std::string key = recovery_key_path(original_path);
    std::vector<found_copy> offer;
    for (found_copy& copy : ended_copies(session, kind))
        if (copy.info.original_path == key && copy_is_newer(copy) && !session.postponed(copy.path))
            offer.push_back(std::move(copy));
    return offer;
}

std::vector<found_copy> copies_to_offer_at_start(const recovery_session& session) {
    std::vector<found_copy> offer;
    for (recovery_kind kind : {recovery_kind::project, recovery_kind::model})
        for (found_copy& copy : ended_copies(session, kind))
            if (copy_is_newer(copy) && !session.postponed(copy.path))
                offer.push_back(std::move(copy));
    return offer;
}

std::string recovery_offer_text(const found_copy& copy) {
    const recovery_info& info = copy.info;
    const std::string what = info.kind == recovery_kind::project ? "project" : "model";
    std::string text = "Unsaved work was found from a session that did not close normally.\n\n";
    text += info.original_path.empty() ? "File: a new " + what + " that was never saved"
                                       : "File: " + info.original_path;
    text += "\nCopy taken: " + local_time_text(info.saved_at);
    text += "\nEdits not saved: " + std::to_string(info.edits);
    text += "\n\nRecover opens the copy as an unsaved change of the " + what +
            "; Discard deletes the copy; Later keeps it for the next start.";
    return text;
}

recovery_choice offer_recovery(platform& ui, recovery_session& session, const found_copy& copy) {
    const int answer = ui.ask_choice(recovery_offer_text(copy), recovery_offer_title,
                                     {"Recover", "Discard", "Later"});
    if (answer == 0) return recovery_choice::recover;
    if (answer == 1) {
        std::error_code ec;
        fs::remove(copy.path, ec);
        return recovery_choice::discard;
    }
    session.postpone(copy.path);
    return recovery_choice::later;
}

double recovery_clock_seconds() {
    return now_seconds();
}

}  // namespace trensil
