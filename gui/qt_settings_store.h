// The user settings store on QSettings: application "Ostrand" is the organisation, the section
// a group, the key a value; every value is text.
#pragma once

#include "support/settings_store.h"

namespace trensil {

class qt_settings_store : public settings_store {
public:
    std::string get_setting(const std::string& application, const std::string& section,
                            const std::string& key) const override;
    void save_setting(const std::string& application, const std::string& section,
                      const std::string& key, const std::string& value) override;
};

}  // namespace trensil
