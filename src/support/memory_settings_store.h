// A settings store held in memory, for tests and for runs that must not touch the user's files.
//
//   memory_settings_store store;
//   store.save_setting("Ostrand", "Trensil", "Dip", "45");
//   store.get_setting("Ostrand", "Trensil", "Dip") == "45"
#pragma once

#include <map>
#include <string>
#include <tuple>

#include "support/settings_store.h"

namespace trensil {

class memory_settings_store : public settings_store {
public:
    std::string get_setting(const std::string& application, const std::string& section,
                            const std::string& key) const override;
    void save_setting(const std::string& application, const std::string& section,
                      const std::string& key, const std::string& value) override;
    // Number of values stored.
    std::size_t size() const { return values_.size(); }

private:
    std::map<std::tuple<std::string, std::string, std::string>, std::string> values_;
};

}  // namespace trensil
