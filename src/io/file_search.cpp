#include "io/file_search.h"

#include <filesystem>
#include <optional>
#include <system_error>
#include <vector>

#include "support/paths.h"
#include "support/text_tokens.h"

namespace trensil {

namespace {

bool is_separator(char c) {
    return c == '/' || c == '\\';
}

std::string with_forward_slashes(std::string path) {
    for (char& c : path)
        if (c == '\\') c = '/';
    return path;
}

// The candidate as written when it exists, else with its back slashes read as directory
// separators (a path written on another system); nothing when neither exists.
std::optional<std::string> existing(const std::string& candidate) {
    if (file_exists(candidate)) return candidate;
    const std::string native = with_forward_slashes(candidate);
    if (native != candidate && file_exists(native)) return native;
    return std::nullopt;
}

std::string current_directory() {
    std::error_code ec;
    std::string dir = std::filesystem::current_path(ec).string();
    return ec ? std::string() : dir;
}

// A relative path holds a separator, does not begin with one and names no drive.
bool is_relative_with_directory(const std::string& path) {
    const bool has_separator = path.find_first_of("/\\") != std::string::npos;
    return has_separator && !is_separator(path.front()) && path.find(':') == std::string::npos;
}

std::vector<std::string> split_directories(const std::string& directory) {
    std::vector<std::string> parts;
    std::string part;
    for (char c : directory) {
        if (is_separator(c)) {
            parts.push_back(part);
            part.clear();
        } else {
            part.push_back(c);
        }
    }
    if (!part.empty()) parts.push_back(part);
    return parts;
}

char separator_of(const std::string& path) {
    const auto at = path.find_first_of("/\\");
    return at == std::string::npos ? '/' : path[at];
}

// After the user pointed to a moved file: the leading directories in which the old and new
// locations differ, when at least one trailing directory is the same in both.
void remember_prefixes(const std::string& old_path, const std::string& new_path,
                       file_search_state& state) {
    const std::vector<std::string> old_parts = split_directories(directory_part(old_path));
    const std::vector<std::string> new_parts = split_directories(directory_part(new_path));
    std::size_t same = 0;
    while (same < old_parts.size() && same < new_parts.size() &&
           old_parts[old_parts.size() - 1 - same] == new_parts[new_parts.size() - 1 - same])
        ++same;
    if (same == 0) return;
    auto rebuild = [](const std::vector<std::string>& parts, std::size_t count, char sep) {
        std::string prefix;
        for (std::size_t i = 0; i < count; ++i) prefix += parts[i] + sep;
        return prefix;
    };
    state.old_prefix = rebuild(old_parts, old_parts.size() - same, separator_of(old_path));
    state.new_prefix = rebuild(new_parts, new_parts.size() - same, separator_of(new_path));
}

std::optional<std::string> find_candidate(const std::string& path, const std::string& owner,
                                          const file_search_state& state) {
    const std::string name = file_name_part(path);
    const std::string trimmed = trim_text(path);
    const std::string owner_dir = directory_part(owner);
    const std::string cwd = current_directory();

    if (auto hit = existing(cwd + "/" + name)) return hit;
    if (!trimmed.empty())
        if (auto hit = existing(owner_dir + trimmed)) return hit;
    if (auto hit = existing(owner_dir + name)) return hit;

    // Up the owner's directories, for a relative path written from a level above.
    if (is_relative_with_directory(path)) {
        std::string level = owner_dir;
        if (!level.empty() && is_separator(level.back())) level.pop_back();
        for (auto cut = level.find_last_of("/\\"); cut != std::string::npos;
             cut = level.find_last_of("/\\")) {
            level.erase(cut);
            if (auto hit = existing(level + separator_of(owner) + path)) return hit;
        }
    }

    if (!state.last_found.empty()) {
        const std::string found_dir = directory_part(state.last_found);
        if (auto hit = existing(found_dir + name)) return hit;
        if (auto hit = existing(found_dir + directory_part(path) + name)) return hit;
    }

    if (!state.old_prefix.empty() && path.starts_with(state.old_prefix))
        if (auto hit = existing(state.new_prefix + path.substr(state.old_prefix.size())))
            return hit;

    if (auto hit = existing(path)) return hit;
    if (auto hit = existing(cwd + "/" + directory_part(path) + name)) return hit;
    return std::nullopt;
}

}  // namespace

int search_for_file(const std::string& label, std::string& path, const std::string& owner,
                    file_search_state& state, platform& ui) {
    const std::string entry_directory = current_directory();
    auto leave = [&](int status) {
        if (!entry_directory.empty() && current_directory() != entry_directory)
            set_current_directory(entry_directory);
        return status;
    };

    if (auto hit = find_candidate(path, owner, state)) {
        path = *hit;
        return leave(0);
    }

    const std::string extension = extension_part(path);
    const std::string filter = extension.empty() ? "All files (*.*)|*.*"
                                                 : "Data files (*." + extension + ")|*." +
                                                       extension + "|All files (*.*)|*.*";
    const std::string start =
        state.last_found.empty() ? path : directory_part(state.last_found) + file_name_part(path);
    const auto picked = ui.choose_open_file(
        "Could not find " + label + " please specify its location", filter, start);
    if (!picked) {
        if (ui.ask_yes_no("Cancel reading rest of specification file?")) return leave(-1);
        path.clear();
        return leave(0);
    }
    if (!file_exists(*picked)) {
        path.clear();
        return leave(0);
    }
    state.last_found = *picked;
    remember_prefixes(path, *picked, state);
    path = *picked;
    return leave(0);
}

}  // namespace trensil
