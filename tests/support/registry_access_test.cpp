#include "support/registry_access.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/registry_settings_store.h"
#include "support/scratch_dir.h"

namespace trensil {
namespace {

using testing::read_all;
using testing::scratch_dir;
using testing::write_all;
using strings = std::vector<std::string>;

TEST(registry_access, short_and_long_roots_reach_the_same_key) {
    scratch_dir dir("reg_roots");
    clsRegistryAccess reg(dir.file("store.reg"));
    EXPECT_FALSE(reg.WriteString("HKCU\\Software\\Ostrand\\Trensil", "Dip", "45"));
    reg.CreateKeyIfDoesntExists(true);
    EXPECT_TRUE(reg.WriteString("HKCU\\Software\\Ostrand\\Trensil", "Dip", "45"));
    EXPECT_EQ(reg.ReadString("\\HKEY_CURRENT_USER\\Software\\Ostrand\\Trensil", "Dip"), "45");
    EXPECT_EQ(reg.ReadString("hkey_current_user\\SOFTWARE\\ostrand\\trensil", "DIP"), "45");
    EXPECT_EQ(reg.KeyExists("\\HKCU\\Software\\Ostrand"), registry_success);
    EXPECT_EQ(reg.KeyExists("HKLM\\Software\\Ostrand"), registry_not_found);
    EXPECT_EQ(reg.ReadString("HKLM\\Software\\Ostrand\\Trensil", "Dip", "none"), "none");
}

TEST(registry_access, keys_values_and_the_current_key) {
    scratch_dir dir("reg_keys");
    clsRegistryAccess reg(dir.file("store.reg"));
    EXPECT_EQ(reg.CurrentKey(), "HKEY_CURRENT_USER");
    EXPECT_EQ(reg.CreateKey("HKCU\\Software\\Ostrand\\Trensil"), registry_success);
    EXPECT_EQ(reg.CreateKey("HKCU\\Software\\Ostrand\\TrensilProject"), registry_success);
    EXPECT_EQ(reg.EnumKeys("HKCU\\Software\\Ostrand"), (strings{"Trensil", "TrensilProject"}));
    EXPECT_TRUE(reg.HaveSubkey("HKCU\\Software"));
    EXPECT_FALSE(reg.HaveSubkey("HKCU\\Software\\Ostrand\\Trensil"));

    EXPECT_EQ(reg.SetCurrentKey("HKCU\\Software\\Missing"), registry_not_found);
    EXPECT_EQ(reg.SetCurrentKey("HKCU\\Software\\Ostrand"), registry_success);
    EXPECT_EQ(reg.CurrentKey(), "HKEY_CURRENT_USER\\Software\\Ostrand");
    EXPECT_TRUE(reg.WriteDWORD("Trensil", "Count", 0xdeadbeefu));
    EXPECT_TRUE(reg.WriteBinary("Trensil", "Blob", {0x00, 0x0a, 0xff}));
    EXPECT_TRUE(reg.WriteString("Trensil", "", "default text"));
    EXPECT_EQ(reg.ReadDWORD("HKCU\\Software\\Ostrand\\Trensil", "Count"), 0xdeadbeefu);
    EXPECT_EQ(reg.ReadBinary("Trensil", "Blob"), (std::vector<std::uint8_t>{0x00, 0x0a, 0xff}));
    EXPECT_EQ(reg.ReadString("..\\Ostrand\\Trensil", ""), "default text");
    // A value of another type reads as the default.
    EXPECT_EQ(reg.ReadString("Trensil", "Count", "x"), "x");
    EXPECT_EQ(reg.ReadDWORD("Trensil", "Blob", 7), 7u);
    EXPECT_EQ(reg.EnumValues("Trensil"), (strings{"", "Blob", "Count"}));

    EXPECT_TRUE(reg.ValueExists("Trensil", "count"));
    EXPECT_TRUE(reg.KillValue("Trensil", "COUNT"));
    EXPECT_FALSE(reg.ValueExists("Trensil", "Count"));
    EXPECT_FALSE(reg.KillValue("Trensil", "Count"));

    EXPECT_TRUE(reg.KillKey("HKCU\\Software\\Ostrand"));
    EXPECT_EQ(reg.KeyExists("HKCU\\Software\\Ostrand\\Trensil"), registry_not_found);
    EXPECT_FALSE(reg.KillKey("HKCU\\Software\\Ostrand"));
    EXPECT_FALSE(reg.KillKey("HKCU"));
}

TEST(registry_access, the_tree_is_kept_in_its_file_and_shared) {
    scratch_dir dir("reg_file");
    const std::string store = dir.file("cfg/Ostrand/store.reg");
    {
        clsRegistryAccess a(store);
        clsRegistryAccess b(store);
        a.CreateKeyIfDoesntExists(true);
        a.WriteString("HKCU\\Software\\Ostrand\\Trensil", "Susc", "50000");
        // A second object on the same file sees the change at once.
        EXPECT_EQ(b.ReadString("HKCU\\Software\\Ostrand\\Trensil", "Susc"), "50000");
    }
    const std::string text = read_all(store);
    EXPECT_EQ(text.rfind("REGEDIT4\r\n", 0), 0u);
    EXPECT_NE(
        text.find("[HKEY_CURRENT_USER\\Software\\Ostrand\\Trensil]\r\n\"Susc\"=\"50000\"\r\n"),
        std::string::npos);
    clsRegistryAccess again(store);
    EXPECT_EQ(again.ReadString("HKCU\\Software\\Ostrand\\Trensil", "Susc"), "50000");
}

TEST(registry_export, writes_the_key_and_its_subkeys_and_reads_them_back) {
    scratch_dir dir("reg_export");
    clsRegistryAccess reg(dir.file("store.reg"));
    reg.CreateKeyIfDoesntExists(true);
    reg.WriteString("HKCU\\Software\\Ostrand\\Trensil", "Dip", "45");
    reg.WriteString("HKCU\\Software\\Ostrand\\Trensil", "", "main");
    reg.WriteDWORD("HKCU\\Software\\Ostrand\\Trensil", "Size", 10);
    reg.WriteBinary("HKCU\\Software\\Ostrand\\Trensil\\Sub", "Raw", {0x01, 0xab});
    reg.CreateKey("HKCU\\Software\\Ostrand\\Trensil\\Empty");
    reg.WriteString("HKCU\\Software\\Other", "Left", "alone");

    const std::string file = dir.file("out.reg");
    ASSERT_TRUE(reg.ExportToReg("HKCU\\Software\\Ostrand", file));
    EXPECT_EQ(read_all(file),
              "REGEDIT4\r\n\r\n"
              "[HKEY_CURRENT_USER\\Software\\Ostrand]\r\n\r\n"
              "[HKEY_CURRENT_USER\\Software\\Ostrand\\Trensil]\r\n"
              "@=\"main\"\r\n\"Dip\"=\"45\"\r\n\"Size\"=dword:0000000a\r\n\r\n"
              "[HKEY_CURRENT_USER\\Software\\Ostrand\\Trensil\\Empty]\r\n\r\n"
              "[HKEY_CURRENT_USER\\Software\\Ostrand\\Trensil\\Sub]\r\n"
              "\"Raw\"=hex:01,ab\r\n\r\n");
    EXPECT_FALSE(reg.ExportToReg("HKCU\\Software\\Missing", dir.file("none.reg")));

    clsRegistryAccess fresh(dir.file("fresh.reg"));
    ASSERT_TRUE(fresh.ImportFromReg(file));
    EXPECT_EQ(fresh.ReadString("HKCU\\Software\\Ostrand\\Trensil", "Dip"), "45");
    EXPECT_EQ(fresh.ReadString("HKCU\\Software\\Ostrand\\Trensil", ""), "main");
    EXPECT_EQ(fresh.ReadDWORD("HKCU\\Software\\Ostrand\\Trensil", "Size"), 10u);
    EXPECT_EQ(fresh.ReadBinary("HKCU\\Software\\Ostrand\\Trensil\\Sub", "Raw"),
              (std::vector<std::uint8_t>{0x01, 0xab}));
    EXPECT_EQ(fresh.KeyExists("HKCU\\Software\\Ostrand\\Trensil\\Empty"), registry_success);
    EXPECT_EQ(fresh.KeyExists("HKCU\\Software\\Other"), registry_not_found);
}

TEST(registry_import, refuses_a_file_without_the_first_line_then_applies_one) {
    scratch_dir dir("reg_import");
    const std::string store = dir.file("store.reg");
    clsRegistryAccess reg(store);
    reg.CreateKeyIfDoesntExists(true);
    reg.WriteString("HKCU\\Software\\A", "Gone", "x");
    reg.WriteString("HKCU\\Software\\A", "Kept", "y");
    reg.WriteString("HKCU\\Software\\B\\Deep", "Any", "z");
    const std::string before = read_all(store);

    write_all(dir.file("no_head.reg"), "[HKCU\\Software\\A]\r\n\"Kept\"=-\r\n");
    // Lines are split at CR LF only: a file with bare line feeds has no "REGEDIT4" first line.
    write_all(dir.file("lf.reg"), "REGEDIT4\n[HKCU\\Software\\A]\n\"Kept\"=-\n");
    for (const char* refused : {"no_head.reg", "lf.reg", "missing.reg"})
        EXPECT_FALSE(reg.ImportFromReg(dir.file(refused))) << refused;
    write_all(dir.file("comments.reg"), "REGEDIT4\r\n; one\r\n;[-HKCU\\Software\\A]\r\n\r\n");
    EXPECT_TRUE(reg.ImportFromReg(dir.file("comments.reg")));
    EXPECT_EQ(read_all(store), before);

    const std::string file = dir.file("in.reg");
    write_all(file,
              "regedit4\r\n"
              "; a comment=with an equals sign\r\n"
              "  [HKCU\\Software\\A]  \r\n"
              "\"Gone\"=-\r\n"
              "\"Num\"=DWORD:000000FF\r\n"
              "\"Bin\"=HEX:00,0A,zz,ff\r\n"
              "\"Text\"=\"say \"hi\"\"\r\n"
              "a line without an equals sign\r\n"
              "[-HKEY_CURRENT_USER\\Software\\B]\r\n"
              "\"Orphan\"=\"no key selected\"\r\n"
              "[NOROOT\\Software]\r\n"
              "\"Lost\"=\"1\"\r\n");
    ASSERT_TRUE(reg.ImportFromReg(file));
    EXPECT_FALSE(reg.ValueExists("HKCU\\Software\\A", "Gone"));
    EXPECT_EQ(reg.ReadString("HKCU\\Software\\A", "Kept"), "y");
    EXPECT_EQ(reg.ReadDWORD("HKCU\\Software\\A", "Num"), 255u);
    // Pieces that are not hexadecimal pairs are skipped.
    EXPECT_EQ(reg.ReadBinary("HKCU\\Software\\A", "Bin"),
              (std::vector<std::uint8_t>{0x00, 0x0a, 0xff}));
    // Every double quote of the line is dropped, those inside the text too.
    EXPECT_EQ(reg.ReadString("HKCU\\Software\\A", "Text"), "say hi");
    EXPECT_EQ(reg.KeyExists("HKCU\\Software\\B"), registry_not_found);
    EXPECT_EQ(reg.KeyExists("HKCU\\Software\\B\\Deep"), registry_not_found);
    EXPECT_EQ(reg.EnumValues("HKCU\\Software"), strings{});
}

TEST(registry_binary_text, converts_hex_pairs_and_checks_characters) {
    EXPECT_EQ(clsRegistryAccess::StrToBin("0A FF 10"), (std::vector<std::uint8_t>{10, 255, 16}));
    EXPECT_EQ(clsRegistryAccess::StrToBin("0AFF1"), (std::vector<std::uint8_t>{10, 255, 1}));
    EXPECT_EQ(clsRegistryAccess::StrToBin("0a"), std::vector<std::uint8_t>{});
    EXPECT_EQ(clsRegistryAccess::BinToStr({10, 255, 16}), "0A FF 10");
    EXPECT_EQ(clsRegistryAccess::BinToStr({}), "");
    EXPECT_TRUE(clsRegistryAccess::isBinValid("0123456789ABCDEF "));
    EXPECT_TRUE(clsRegistryAccess::isBinValid(""));
    EXPECT_FALSE(clsRegistryAccess::isBinValid("0a"));
    EXPECT_FALSE(clsRegistryAccess::isBinValid("0A,FF"));
    const std::vector<std::uint8_t> all = {0, 1, 127, 128, 200, 255};
    EXPECT_EQ(clsRegistryAccess::StrToBin(clsRegistryAccess::BinToStr(all)), all);
}

TEST(registry_settings_store, keeps_settings_under_the_software_key) {
    scratch_dir dir("reg_settings");
    const std::string store_file = dir.file("store.reg");
    registry_settings_store store(store_file);
    EXPECT_EQ(store.get_setting("Ostrand", "Trensil", "Dip"), "<no value>");
    store.save_setting("Ostrand", "Trensil", "Dip", "45");
    EXPECT_EQ(store.get_setting("Ostrand", "Trensil", "Dip"), "45");
    EXPECT_EQ(store.get_setting("Ostrand", "TrensilProject", "Dip"), "<no value>");
    clsRegistryAccess reg(store_file);
    EXPECT_EQ(reg.ReadString("HKCU\\Software\\Ostrand\\Trensil", "Dip"), "45");
    reg.WriteDWORD("HKCU\\Software\\Ostrand\\Trensil", "Number", 3);
    EXPECT_EQ(store.get_setting("Ostrand", "Trensil", "Number"), "<no value>");
}

}  // namespace
}  // namespace trensil
