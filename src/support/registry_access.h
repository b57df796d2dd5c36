// Keyed settings in a tree of keys under named roots, with string, 32-bit and binary values,
// and export to and import from a text file in the registry editor's version 4 format.
//
// The tree lives in the process and is kept in a file of that same text format, by default
// "registry.reg" in the folder "Ostrand" of the user's configuration directory ($XDG_CONFIG_HOME,
// else ~/.config). Every object on the same file shares one tree, and every change rewrites the
// file through a temporary renamed over it.
//
//   clsRegistryAccess reg;
//   reg.CreateKeyIfDoesntExists(true);
//   reg.WriteString("HKCU\\Software\\Ostrand\\Trensil", "Dip", "45");
//   reg.ReadString("\\HKEY_CURRENT_USER\\Software\\Ostrand\\Trensil", "Dip") == "45"
//
// A path starts with a root in long or short form ("HKEY_CURRENT_USER" or "HKCU"), with or
// without a leading backslash; a path without a root is taken below the current key (see
// SetCurrentKey), where ".." climbs one key. Key and value names compare without regard to case.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace trensil {

// Numbers of the roots.
inline constexpr std::uint32_t hkey_classes_root = 0x80000000u;
inline constexpr std::uint32_t hkey_current_user = 0x80000001u;
inline constexpr std::uint32_t hkey_local_machine = 0x80000002u;
inline constexpr std::uint32_t hkey_users = 0x80000003u;
inline constexpr std::uint32_t hkey_performance_data = 0x80000004u;
inline constexpr std::uint32_t hkey_current_config = 0x80000005u;
inline constexpr std::uint32_t hkey_dyn_data = 0x80000006u;

// Result codes of the operations that return one.
inline constexpr long registry_success = 0;
inline constexpr long registry_not_found = 2;
inline constexpr long registry_write_fault = 29;
inline constexpr long registry_invalid_parameter = 87;

// The number of a root named in long or short form, any case; 0 when it names no root.
std::uint32_t registry_root_number(std::string_view name);
// The long form of a root's name; "" for a number that is no root.
std::string registry_root_name(std::uint32_t root);

// The default file of the tree: <configuration directory>/Ostrand/registry.reg.
std::string default_registry_file();

class registry_tree;

class clsRegistryAccess {
public:
    // On the user's default file.
    clsRegistryAccess();
    // On the tree kept in `store_file`.
    explicit clsRegistryAccess(const std::string& store_file);
    ~clsRegistryAccess();

    // When on, writing to a missing key, or making it current, creates it first. Off at start.
    bool CreateKeyIfDoesntExists() const { return create_missing_; }
    void CreateKeyIfDoesntExists(bool on) { create_missing_ = on; }

    // Makes `path` the current key; registry_not_found when it is missing (and not created).
    long SetCurrentKey(const std::string& path);
    // The current key's full path in long form, "HKEY_CURRENT_USER" at start.
    std::string CurrentKey() const;

    // Creates the key and the keys above it: registry_success, or a failure code.
    long CreateKey(const std::string& path);
    // Removes the key with all below it; false when it is missing or is a root.
    bool KillKey(const std::string& path);
    // registry_success (0) when the key exists, registry_not_found when not: a code, not a flag.
    long KeyExists(const std::string& path) const;
    // Names of the key's subkeys, in order of their names.
    std::vector<std::string> EnumKeys(const std::string& path) const;
    bool HaveSubkey(const std::string& path) const;

    // Writing returns false when the key is missing (and not created) or the file could not be
    // written. Reading a missing value, or one of another type, gives the default. The value
    // name "" is the key's default value.
    bool WriteString(const std::string& path, const std::string& name, const std::string& value);
    std::string ReadString(const std::string& path, const std::string& name,
                           const std::string& default_value = "") const;
    bool WriteDWORD(const std::string& path, const std::string& name, std::uint32_t value);
    std::uint32_t ReadDWORD(const std::string& path, const std::string& name,
                            std::uint32_t default_value = 0) const;
    bool WriteBinary(const std::string& path, const std::string& name,
                     const std::vector<std::uint8_t>& value);
    std::vector<std::uint8_t> ReadBinary(const std::string& path, const std::string& name) const;
    bool KillValue(const std::string& path, const std::string& name);
    bool ValueExists(const std::string& path, const std::string& name) const;
    // Names of the key's values, in order of their names ("" for the default value).
    std::vector<std::string> EnumValues(const std::string& path) const;

    // Writes the key and all below it to `file` as text: "REGEDIT4", then per key a line with
    // its path in brackets and one line per value. False when the key is missing or the file
    // could not be written.
    bool ExportToReg(const std::string& path, const std::string& file) const;
    // Reads such a text back into the tree. False, with nothing changed, when the file cannot be
    // read or its first line is not "REGEDIT4".
    bool ImportFromReg(const std::string& file);

    // Bytes from hexadecimal pairs ("0A FF" or "0AFF"); blanks are skipped, a lone last digit is
    // a byte of its own. Empty when the text is not valid (see isBinValid).
    static std::vector<std::uint8_t> StrToBin(const std::string& text);
    // Bytes as upper-case hexadecimal pairs separated by blanks: "0A FF".
    static std::string BinToStr(const std::vector<std::uint8_t>& bytes);
    // True when the text holds only characters of "0123456789ABCDEF " (lower case is refused).
    static bool isBinValid(const std::string& text);

private:
    struct resolved_path {
        std::uint32_t root = 0;
        std::vector<std::string> parts;
    };
    std::optional<resolved_path> resolve(const std::string& path) const;
    bool write_value(const std::string& path, const std::string& name, int kind,
                     const std::string& text, std::uint32_t number,
                     const std::vector<std::uint8_t>& bytes);

    std::shared_ptr<registry_tree> tree_;
    bool create_missing_ = false;
    resolved_path current_{hkey_current_user, {}};
};

}  // namespace trensil
