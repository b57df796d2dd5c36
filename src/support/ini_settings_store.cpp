#include "support/ini_settings_store.h"

#include <filesystem>
#include <fstream>

#include "support/atomic_file.h"
#include "support/text_tokens.h"

namespace trensil {

namespace {

std::string escape_value(const std::string& value) {
    std::string out;
    for (char c : value) {
        if (c == '\\')
            out += "\\\\";
        else if (c == '\n')
            out += "\\n";
        else if (c == '\r')
            out += "\\r";
        else
            out += c;
    }
    return out;
}

std::string unescape_value(const std::string& text) {
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\\' && i + 1 < text.size()) {
            const char next = text[++i];
            out += next == 'n' ? '\n' : next == 'r' ? '\r' : next;
        } else {
            out += text[i];
        }
    }
    return out;
}

std::string group_name(const std::string& application, const std::string& section) {
    return application + "/" + section;
}

}  // namespace

ini_settings_store::ini_settings_store(std::string path) : path_(std::move(path)) {
    load();
}

void ini_settings_store::load() {
    std::ifstream in(path_, std::ios::binary);
    if (!in) return;
    std::string line;
    std::map<std::string, std::string>* group = nullptr;
    while (std::getline(in, line)) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        const std::string t = trim_text(line);
        if (t.empty() || t[0] == ';' || t[0] == '#') continue;
        if (t.front() == '[' && t.back() == ']') {
            group = &groups_[t.substr(1, t.size() - 2)];
            continue;
        }
        const auto eq = line.find('=');
        if (!group || eq == std::string::npos) continue;
        // Keys are trimmed; the value is kept as written after the '='.
        (*group)[trim_text(line.substr(0, eq))] = unescape_value(line.substr(eq + 1));
    }
}

bool ini_settings_store::write() const {
    std::error_code ec;
    const std::filesystem::path dir = std::filesystem::path(path_).parent_path();
    if (!dir.empty()) std::filesystem::create_directories(dir, ec);
    atomic_file out(path_);
    if (!out.is_open()) {
        last_error_ = out.error();
        return false;
    }
    for (const auto& [name, values] : groups_) {
        out.stream() << '[' << name << "]\n";
        for (const auto& [key, value] : values)
            out.stream() << key << '=' << escape_value(value) << '\n';
        out.stream() << '\n';
    }
    if (!out.commit()) {
        last_error_ = out.error();
        return false;
    }
    last_error_.clear();
    return true;
}

std::string ini_settings_store::get_setting(const std::string& application,
                                            const std::string& section,
                                            const std::string& key) const {
    const auto g = groups_.find(group_name(application, section));
    if (g == groups_.end()) return no_setting_value;
    const auto v = g->second.find(key);
    return v == g->second.end() ? std::string(no_setting_value) : v->second;
}

void ini_settings_store::save_setting(const std::string& application, const std::string& section,
                                      const std::string& key, const std::string& value) {
    groups_[group_name(application, section)][key] = value;
    write();
}

}  // namespace trensil
