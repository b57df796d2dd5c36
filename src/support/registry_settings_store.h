// The user settings store over the keyed tree: application, section and key name the value
// `key` of HKEY_CURRENT_USER\Software\<application>\<section>.
//
//   registry_settings_store store;                      // the user's own file
//   store.save_setting("Ostrand", "Trensil", "Dip", "45");
#pragma once

#include <string>

#include "support/registry_access.h"
#include "support/settings_store.h"

namespace trensil {

class registry_settings_store : public settings_store {
public:
    // On the user's default file.
    registry_settings_store();
    // On the tree kept in `store_file`.
    explicit registry_settings_store(const std::string& store_file);

    // The text value, or "<no value>" when it is absent or not a text.
    std::string get_setting(const std::string& application, const std::string& section,
                            const std::string& key) const override;
    // Creates the section's key when needed.
    void save_setting(const std::string& application, const std::string& section,
                      const std::string& key, const std::string& value) override;

private:
    static std::string key_path(const std::string& application, const std::string& section);
    clsRegistryAccess registry_;
};

}  // namespace trensil
