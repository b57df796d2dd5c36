// A settings store in an INI file, for the batch tool: one group "[application/section]" per
// section, one "key=value" line per value. The file is read when the store is made and written
// whole, through a temporary file renamed over it, after every save.
//
//   ini_settings_store store("/home/me/.config/Ostrand/trensil.ini");
//   store.save_setting("Ostrand", "Trensil", "Susc", "50000");
//
// Line breaks and backslashes in values are written as \n, \r and \\ and read back as they were.
#pragma once

#include <map>
#include <string>
#include <utility>

#include "support/settings_store.h"

namespace trensil {

class ini_settings_store : public settings_store {
public:
    // Reads `path` if it exists; a missing file is an empty store.
    explicit ini_settings_store(std::string path);

    std::string get_setting(const std::string& application, const std::string& section,
                            const std::string& key) const override;
    void save_setting(const std::string& application, const std::string& section,
                      const std::string& key, const std::string& value) override;

    const std::string& path() const { return path_; }
    // The system's description of the last failed write; "" after a good one.
    const std::string& last_error() const { return last_error_; }

private:
    void load();
    bool write() const;

    std::string path_;
    // group "application/section" -> key -> value
    std::map<std::string, std::map<std::string, std::string>> groups_;
    mutable std::string last_error_;
};

}  // namespace trensil
