#include "support/registry_access.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <mutex>

#include "support/atomic_file.h"
#include "support/text_tokens.h"

namespace trensil {

namespace {

std::string upper_case(std::string_view text) {
    std::string out(text);
    for (char& c : out)
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    return out;
}

std::string lower_case(std::string_view text) {
    std::string out(text);
    for (char& c : out)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return out;
}

struct root_names {
    std::uint32_t number;
    const char* long_form;
    const char* short_form;
};

constexpr root_names all_roots[] = {
    {hkey_current_user, "HKEY_CURRENT_USER", "HKCU"},
    {hkey_local_machine, "HKEY_LOCAL_MACHINE", "HKLM"},
    {hkey_classes_root, "HKEY_CLASSES_ROOT", "HKCR"},
    {hkey_users, "HKEY_USERS", "HKUS"},
    {hkey_performance_data, "HKEY_PERFORMANCE_DATA", "HKPD"},
    {hkey_dyn_data, "HKEY_DYN_DATA", "HKDD"},
    {hkey_current_config, "HKEY_CURRENT_CONFIG", "HKCC"},
};

enum value_kind : int { string_value = 1, dword_value = 4, binary_value = 3 };

struct registry_value {
    std::string name;  // as first written
    int kind = string_value;
    std::string text;
    std::uint32_t number = 0;
    std::vector<std::uint8_t> bytes;
};

char hex_digit(unsigned v) {
    return "0123456789abcdef"[v & 15u];
}

int hex_value(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

}  // namespace

std::uint32_t registry_root_number(std::string_view name) {
    const std::string u = upper_case(name);
    for (const auto& r : all_roots)
        if (u == r.long_form || u == r.short_form) return r.number;
    return 0;
}

std::string registry_root_name(std::uint32_t root) {
    for (const auto& r : all_roots)
        if (r.number == root) return r.long_form;
    return "";
}

std::string default_registry_file() {
    const char* xdg = std::getenv("XDG_CONFIG_HOME");
    const char* home = std::getenv("HOME");
    std::filesystem::path base = xdg && *xdg     ? std::filesystem::path(xdg)
                                 : home && *home ? std::filesystem::path(home) / ".config"
                                                 : std::filesystem::path(".");
    return (base / "Ostrand" / "registry.reg").string();
}

// One key: its name as first written, its values and subkeys by upper-case name.
struct registry_key {
    std::string name;
    std::map<std::string, registry_value> values;
    std::map<std::string, std::unique_ptr<registry_key>> subkeys;
};

// The tree of all roots kept in one file, shared by every object on that file.
class registry_tree {
public:
    static std::shared_ptr<registry_tree> open(const std::string& file) {
        static std::mutex guard;
        static std::map<std::string, std::weak_ptr<registry_tree>> open_trees;
        std::lock_guard<std::mutex> lock(guard);
        if (auto tree = open_trees[file].lock()) return tree;
        auto tree = std::make_shared<registry_tree>(file);
        open_trees[file] = tree;
        return tree;
    }

    explicit registry_tree(std::string file) : file_(std::move(file)) {
        for (const auto& r : all_roots) roots_[r.number].name = r.long_form;
        std::ifstream in(file_, std::ios::binary);
        if (in) apply_regedit_text({std::istreambuf_iterator<char>(in), {}});
    }

    // The key, or null when it is missing and `create` is false.
    registry_key* find(std::uint32_t root, const std::vector<std::string>& parts, bool create) {
        auto r = roots_.find(root);
        if (r == roots_.end()) return nullptr;
        registry_key* key = &r->second;
        for (const auto& part : parts) {
            auto& slot = key->subkeys[upper_case(part)];
            if (!slot) {
                if (!create) {
                    key->subkeys.erase(upper_case(part));
                    return nullptr;
                }
                slot = std::make_unique<registry_key>();
                slot->name = part;
            }
            key = slot.get();
        }
        return key;
    }

    bool remove(std::uint32_t root, const std::vector<std::string>& parts) {
        if (parts.empty()) return false;
        std::vector<std::string> above(parts.begin(), parts.end() - 1);
        registry_key* parent = find(root, above, false);
        return parent && parent->subkeys.erase(upper_case(parts.back())) > 0;
    }

    // Writes the whole tree to its file; false when that fails.
    bool save() const {
        std::error_code ec;
        const auto dir = std::filesystem::path(file_).parent_path();
        if (!dir.empty()) std::filesystem::create_directories(dir, ec);
        atomic_file out(file_);
        if (!out.is_open()) return false;
        out.stream() << "REGEDIT4\r\n\r\n";
        for (const auto& r : all_roots) write_key(out.stream(), roots_.at(r.number), r.long_form);
        return out.commit();
    }

    // Writes `key` under the heading `path`, then all its subkeys.
    static void write_key(std::ostream& out, const registry_key& key, const std::string& path) {
        out << '[' << path << "]\r\n";
        for (const auto& [id, v] : key.values) {
            out << (v.name.empty() ? std::string("@") : '"' + v.name + '"') << '=';
            if (v.kind == dword_value) {
                char digits[16];
                std::snprintf(digits, sizeof digits, "dword:%08x", static_cast<unsigned>(v.number));
                out << digits;
            } else if (v.kind == binary_value) {
                out << "hex:";
                for (std::size_t i = 0; i < v.bytes.size(); ++i)
                    out << (i ? "," : "") << hex_digit(v.bytes[i] >> 4u) << hex_digit(v.bytes[i]);
            } else {
                out << '"' << v.text << '"';
            }
            out << "\r\n";
        }
        out << "\r\n";
        for (const auto& [id, sub] : key.subkeys) write_key(out, *sub, path + "\\" + sub->name);
    }

    // Applies a text of the registry editor's format; false, changing nothing, when its first
    // line in upper case is not "REGEDIT4".
    bool apply_regedit_text(const std::string& text) {
        std::vector<std::string> lines;
        std::size_t from = 0;
        while (true) {
            const std::size_t at = text.find("\r\n", from);
            lines.push_back(
                text.substr(from, at == std::string::npos ? std::string::npos : at - from));
            if (at == std::string::npos) break;
            from = at + 2;
        }
        if (upper_case(lines[0]) != "REGEDIT4") return false;

        registry_key* current = nullptr;
        for (std::size_t i = 1; i < lines.size(); ++i) {
            std::string line = trim_text(lines[i]);
            std::erase(line, '"');
            if (line.empty()) continue;
            if (line.rfind("[-", 0) == 0 || line[0] == '[') {
                const bool kill = line[1] == '-';
                std::string path = line.substr(kill ? 2 : 1);
                if (!path.empty() && path.back() == ']') path.pop_back();
                const auto where = split_path(path);
                current = nullptr;
                if (!where) continue;
                if (kill)
                    remove(where->first, where->second);
                else
                    current = find(where->first, where->second, true);
                continue;
            }
            if (line[0] == ';') continue;
            const std::size_t eq = line.find('=');
            if (eq == std::string::npos || !current) continue;
            std::string name = line.substr(0, eq);
            if (name == "@") name.clear();
            const std::string value = line.substr(eq + 1);
            if (value == "-") {
                current->values.erase(upper_case(name));
                continue;
            }
            registry_value v;
            v.name = name;
            const std::string prefix = lower_case(value.substr(0, 6));
            if (prefix.rfind("hex:", 0) == 0) {
                v.kind = binary_value;
                // Comma-separated pairs; a piece that is not one or two hex digits is skipped.
                const std::string rest = value.substr(4);
                std::size_t from = 0;
                while (from <= rest.size()) {
                    const std::size_t comma = rest.find(',', from);
                    const std::string pair = trim_text(
                        rest.substr(from, comma == std::string::npos ? comma : comma - from));
                    if (!pair.empty() && pair.size() <= 2 && hex_value(pair[0]) >= 0 &&
                        (pair.size() == 1 || hex_value(pair[1]) >= 0))
                        v.bytes.push_back(
                            static_cast<std::uint8_t>(std::strtoul(pair.c_str(), nullptr, 16)));
                    if (comma == std::string::npos) break;
                    from = comma + 1;
                }
            } else if (prefix == "dword:") {
                v.kind = dword_value;
                std::uint32_t n = 0;
                for (std::size_t k = 6; k < value.size() && hex_value(value[k]) >= 0; ++k)
                    n = (n << 4) | static_cast<std::uint32_t>(hex_value(value[k]));
                v.number = n;
            } else {
                v.text = value;
            }
            const std::string id = upper_case(name);
            auto it = current->values.find(id);
            if (it != current->values.end()) v.name = it->second.name;
            current->values[id] = std::move(v);
        }
        return true;
    }

    // A full path split into its root and the names below it.
    static std::optional<std::pair<std::uint32_t, std::vector<std::string>>> split_path(
        const std::string& path) {
        std::vector<std::string> parts;
        std::size_t from = 0;
        while (from <= path.size()) {
            const std::size_t at = path.find('\\', from);
            const std::string part =
                path.substr(from, at == std::string::npos ? std::string::npos : at - from);
            if (!part.empty()) parts.push_back(part);
            if (at == std::string::npos) break;
            from = at + 1;
        }
        if (parts.empty()) return std::nullopt;
        const std::uint32_t root = registry_root_number(parts[0]);
        if (root == 0) return std::nullopt;
        parts.erase(parts.begin());
        return std::make_pair(root, std::move(parts));
    }

private:
    std::string file_;
    std::map<std::uint32_t, registry_key> roots_;
};

clsRegistryAccess::clsRegistryAccess() : clsRegistryAccess(default_registry_file()) {}

clsRegistryAccess::clsRegistryAccess(const std::string& store_file)
    : tree_(registry_tree::open(store_file)) {}

clsRegistryAccess::~clsRegistryAccess() = default;

std::optional<clsRegistryAccess::resolved_path> clsRegistryAccess::resolve(
    const std::string& path) const {
    resolved_path out = current_;
    std::size_t from = 0;
    bool first = true;
    while (from <= path.size()) {
        const std::size_t at = path.find('\\', from);
        const std::string part =
            path.substr(from, at == std::string::npos ? std::string::npos : at - from);
        if (!part.empty()) {
            const std::uint32_t root = first ? registry_root_number(part) : 0;
            if (root != 0) {
                out = resolved_path{root, {}};
            } else if (part == "..") {
                if (!out.parts.empty()) out.parts.pop_back();
            } else if (part != ".") {
                out.parts.push_back(part);
            }
            first = false;
        }
        if (at == std::string::npos) break;
        from = at + 1;
    }
    return out;
}

long clsRegistryAccess::SetCurrentKey(const std::string& path) {
    const auto where = resolve(path);
    if (!where) return registry_invalid_parameter;
    if (!tree_->find(where->root, where->parts, false)) {
        if (!create_missing_) return registry_not_found;
        const long made = CreateKey(path);
        if (made != registry_success) return made;
    }
    current_ = *where;
    return registry_success;
}

std::string clsRegistryAccess::CurrentKey() const {
    std::string path = registry_root_name(current_.root);
    for (const auto& part : current_.parts) path += "\\" + part;
    return path;
}

long clsRegistryAccess::CreateKey(const std::string& path) {
    const auto where = resolve(path);
    if (!where) return registry_invalid_parameter;
    if (tree_->find(where->root, where->parts, false)) return registry_success;
    tree_->find(where->root, where->parts, true);
    return tree_->save() ? registry_success : registry_write_fault;
}

bool clsRegistryAccess::KillKey(const std::string& path) {
    const auto where = resolve(path);
    if (!where || !tree_->remove(where->root, where->parts)) return false;
    return tree_->save();
}

long clsRegistryAccess::KeyExists(const std::string& path) const {
    const auto where = resolve(path);
    if (!where) return registry_invalid_parameter;
    return tree_->find(where->root, where->parts, false) ? registry_success : registry_not_found;
}

std::vector<std::string> clsRegistryAccess::EnumKeys(const std::string& path) const {
    std::vector<std::string> names;
    const auto where = resolve(path);
    if (!where) return names;
    if (const registry_key* key = tree_->find(where->root, where->parts, false))
        for (const auto& [id, sub] : key->subkeys) names.push_back(sub->name);
    return names;
}

bool clsRegistryAccess::HaveSubkey(const std::string& path) const {
    return !EnumKeys(path).empty();
}

bool clsRegistryAccess::write_value(const std::string& path, const std::string& name, int kind,
                                    const std::string& text, std::uint32_t number,
                                    const std::vector<std::uint8_t>& bytes) {
    const auto where = resolve(path);
    if (!where) return false;
    registry_key* key = tree_->find(where->root, where->parts, create_missing_);
    if (!key) return false;
    registry_value& v = key->values[upper_case(name)];
    if (v.name.empty()) v.name = name;
    v.kind = kind;
    v.text = text;
    v.number = number;
    v.bytes = bytes;
    return tree_->save();
}

namespace {
const registry_value* find_value(registry_tree& tree, std::uint32_t root,
                                 const std::vector<std::string>& parts, const std::string& name) {
    const registry_key* key = tree.find(root, parts, false);
    if (!key) return nullptr;
    const auto it = key->values.find(upper_case(name));
    return it == key->values.end() ? nullptr : &it->second;
}
}  // namespace

bool clsRegistryAccess::WriteString(const std::string& path, const std::string& name,
                                    const std::string& value) {
    return write_value(path, name, string_value, value, 0, {});
}

std::string clsRegistryAccess::ReadString(const std::string& path, const std::string& name,
                                          const std::string& default_value) const {
    const auto where = resolve(path);
    if (!where) return default_value;
    const registry_value* v = find_value(*tree_, where->root, where->parts, name);
    return v && v->kind == string_value ? v->text : default_value;
}

bool clsRegistryAccess::WriteDWORD(const std::string& path, const std::string& name,
                                   std::uint32_t value) {
    return write_value(path, name, dword_value, "", value, {});
}

std::uint32_t clsRegistryAccess::ReadDWORD(const std::string& path, const std::string& name,
                                           std::uint32_t default_value) const {
    const auto where = resolve(path);
    if (!where) return default_value;
    const registry_value* v = find_value(*tree_, where->root, where->parts, name);
    return v && v->kind == dword_value ? v->number : default_value;
}

bool clsRegistryAccess::WriteBinary(const std::string& path, const std::string& name,
                                    const std::vector<std::uint8_t>& value) {
    return write_value(path, name, binary_value, "", 0, value);
}

std::vector<std::uint8_t> clsRegistryAccess::ReadBinary(const std::string& path,
                                                        const std::string& name) const {
    const auto where = resolve(path);
    if (!where) return {};
    const registry_value* v = find_value(*tree_, where->root, where->parts, name);
    return v && v->kind == binary_value ? v->bytes : std::vector<std::uint8_t>{};
}

bool clsRegistryAccess::KillValue(const std::string& path, const std::string& name) {
    const auto where = resolve(path);
    if (!where) return false;
    registry_key* key = tree_->find(where->root, where->parts, false);
    if (!key || key->values.erase(upper_case(name)) == 0) return false;
    return tree_->save();
}

bool clsRegistryAccess::ValueExists(const std::string& path, const std::string& name) const {
    const auto where = resolve(path);
    return where && find_value(*tree_, where->root, where->parts, name) != nullptr;
}

std::vector<std::string> clsRegistryAccess::EnumValues(const std::string& path) const {
    std::vector<std::string> names;
    const auto where = resolve(path);
    if (!where) return names;
    if (const registry_key* key = tree_->find(where->root, where->parts, false))
        for (const auto& [id, v] : key->values) names.push_back(v.name);
    return names;
}

bool clsRegistryAccess::ExportToReg(const std::string& path, const std::string& file) const {
    const auto where = resolve(path);
    if (!where) return false;
    const registry_key* key = tree_->find(where->root, where->parts, false);
    if (!key) return false;
    std::string heading = registry_root_name(where->root);
    for (const auto& part : where->parts) heading += "\\" + part;
    atomic_file out(file);
    if (!out.is_open()) return false;
    out.stream() << "REGEDIT4\r\n\r\n";
    registry_tree::write_key(out.stream(), *key, heading);
    return out.commit();
}

bool clsRegistryAccess::ImportFromReg(const std::string& file) {
    std::ifstream in(file, std::ios::binary);
    if (!in) return false;
    const std::string text{std::istreambuf_iterator<char>(in), {}};
    if (!tree_->apply_regedit_text(text)) return false;
    tree_->save();
    return true;
}

std::vector<std::uint8_t> clsRegistryAccess::StrToBin(const std::string& text) {
    if (!isBinValid(text)) return {};
    std::string digits;
    for (char c : text)
        if (c != ' ') digits += c;
    std::vector<std::uint8_t> bytes;
    for (std::size_t i = 0; i < digits.size(); i += 2) {
        int v = hex_value(digits[i]);
        if (i + 1 < digits.size()) v = v * 16 + hex_value(digits[i + 1]);
        bytes.push_back(static_cast<std::uint8_t>(v));
    }
    return bytes;
}

std::string clsRegistryAccess::BinToStr(const std::vector<std::uint8_t>& bytes) {
    std::string out;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (i) out += ' ';
        out += "0123456789ABCDEF"[bytes[i] >> 4u];
        out += "0123456789ABCDEF"[bytes[i] & 15u];
    }
    return out;
}

bool clsRegistryAccess::isBinValid(const std::string& text) {
    return text.find_first_not_of("0123456789ABCDEF ") == std::string::npos;
}

}  // namespace trensil
