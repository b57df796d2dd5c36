#include "support/paths.h"

#include <filesystem>
#include <system_error>

namespace trensil {

namespace {
std::string::size_type last_separator(const std::string& path) {
    return path.find_last_of("/\\");
}
}  // namespace

std::string directory_part(const std::string& path) {
    const auto sep = last_separator(path);
    return sep == std::string::npos ? std::string() : path.substr(0, sep + 1);
}

std::string file_name_part(const std::string& path) {
    const auto sep = last_separator(path);
    return sep == std::string::npos ? path : path.substr(sep + 1);
}

std::string extension_part(const std::string& path) {
    const std::string name = file_name_part(path);
    const auto dot = name.find_last_of('.');
    return dot == std::string::npos ? std::string() : name.substr(dot + 1);
}

std::string drop_extension(const std::string& path) {
    const auto sep = last_separator(path);
    const auto dot = path.find_last_of('.');
    if (dot == std::string::npos || (sep != std::string::npos && dot < sep)) return path;
    return path.substr(0, dot);
}

bool file_exists(const std::string& path) {
    std::error_code ec;
    return !path.empty() && std::filesystem::is_regular_file(path, ec);
}

bool set_current_directory(const std::string& path) {
    std::error_code ec;
    std::filesystem::current_path(path, ec);
    return !ec;
}

}  // namespace trensil
