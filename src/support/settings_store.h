// The user settings store: text values by application, section and key. The window keeps them
// with QSettings, the batch tool and tests in an INI file or in memory (ini_settings_store.h,
// memory_settings_store.h).
//
//   std::string v = store.get_setting("Ostrand", "Trensil", "Susc");   // "<no value>" if absent
//   store.save_setting("Ostrand", "Trensil", "Susc", "50000");
#pragma once

#include <string>

namespace trensil {

inline constexpr const char* no_setting_value = "<no value>";

class settings_store {
public:
    virtual ~settings_store() = default;
    // The stored text, or "<no value>" when the key is absent.
    virtual std::string get_setting(const std::string& application, const std::string& section,
                                    const std::string& key) const = 0;
    virtual void save_setting(const std::string& application, const std::string& section,
                              const std::string& key, const std::string& value) = 0;
};

}  // namespace trensil
