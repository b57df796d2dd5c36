#include "support/registry_settings_store.h"

namespace trensil {

registry_settings_store::registry_settings_store() {
    registry_.CreateKeyIfDoesntExists(true);
}

registry_settings_store::registry_settings_store(const std::string& store_file)
    : registry_(store_file) {
    registry_.CreateKeyIfDoesntExists(true);
}

std::string registry_settings_store::key_path(const std::string& application,
                                              const std::string& section) {
    return "HKEY_CURRENT_USER\\Software\\" + application + "\\" + section;
}

std::string registry_settings_store::get_setting(const std::string& application,
                                                 const std::string& section,
                                                 const std::string& key) const {
    return registry_.ReadString(key_path(application, section), key, no_setting_value);
}

void registry_settings_store::save_setting(const std::string& application,
                                           const std::string& section, const std::string& key,
                                           const std::string& value) {
    registry_.WriteString(key_path(application, section), key, value);
}

}  // namespace trensil
