#include "support/memory_settings_store.h"

namespace trensil {

std::string memory_settings_store::get_setting(const std::string& application,
                                               const std::string& section,
                                               const std::string& key) const {
    const auto it = values_.find({application, section, key});
    return it == values_.end() ? std::string(no_setting_value) : it->second;
}

void memory_settings_store::save_setting(const std::string& application, const std::string& section,
                                         const std::string& key, const std::string& value) {
    values_[{application, section, key}] = value;
}

}  // namespace trensil
