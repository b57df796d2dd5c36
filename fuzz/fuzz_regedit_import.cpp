// Feeds arbitrary bytes to the settings tree's import as a registry text file. Oracle: the
// import never fails badly, and a tree's export, imported into a fresh tree and exported again,
// gives the same text for every root.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "support/registry_access.h"
#include "support/scratch_dir.h"

namespace {

// The folder of this run's files, removed when the run ends.
const std::filesystem::path& work_dir() {
    return trensil::testing::process_scratch_dir().path();
}

using trensil::testing::read_all;

const char* const roots[] = {"HKEY_CURRENT_USER",  "HKEY_LOCAL_MACHINE",    "HKEY_CLASSES_ROOT",
                             "HKEY_USERS",         "HKEY_PERFORMANCE_DATA", "HKEY_DYN_DATA",
                             "HKEY_CURRENT_CONFIG"};

// Every root of the tree exported, one file after another.
std::string export_all(const trensil::clsRegistryAccess& reg, const std::filesystem::path& file) {
    std::string all;
    for (const char* root : roots) {
        if (!reg.ExportToReg(root, file.string())) std::abort();
        all += read_all(file);
    }
    return all;
}

// Line ends made by dropping double quotes ("\r\"\n" becomes a line end inside one value).
// A value holding a line end cannot be carried by the text format, so such input is only
// imported, not compared after a round trip.
bool quotes_hide_a_line_end(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    std::string unquoted;
    for (char c : text)
        if (c != '"') unquoted += c;
    auto line_ends = [](const std::string& t) {
        std::size_t n = 0;
        for (std::size_t i = 0; i + 1 < t.size(); ++i) n += t[i] == '\r' && t[i + 1] == '\n';
        return n;
    };
    return line_ends(unquoted) != line_ends(text);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto dir = work_dir();
    const auto input = dir / "input.reg";
    {
        std::ofstream out(input, std::ios::binary | std::ios::trunc);
        out.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    }
    std::filesystem::remove(dir / "first_store.reg");
    std::filesystem::remove(dir / "second_store.reg");

    std::string first_export;
    {
        trensil::clsRegistryAccess reg((dir / "first_store.reg").string());
        if (!reg.ImportFromReg(input.string())) return 0;
        if (quotes_hide_a_line_end(data, size)) return 0;
        first_export = export_all(reg, dir / "first_export.reg");
    }
    trensil::clsRegistryAccess fresh((dir / "second_store.reg").string());
    // Import each root's export of the first tree into the fresh one.
    {
        trensil::clsRegistryAccess first((dir / "first_store.reg").string());
        for (const char* root : roots) {
            const auto part = dir / "part.reg";
            if (!first.ExportToReg(root, part.string())) std::abort();
            if (!fresh.ImportFromReg(part.string())) std::abort();
        }
    }
    if (export_all(fresh, dir / "second_export.reg") != first_export) std::abort();
    return 0;
}
