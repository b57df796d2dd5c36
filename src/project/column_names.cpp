#include "project/column_names.h"

#include <algorithm>
#include <cctype>

#include "io/location_reader.h"
#include "support/text_tokens.h"

namespace trensil {

std::vector<std::string> decode_names_line(std::string line) {
    while (!line.empty() && (line[0] == '/' || line[0] == '#' || line[0] == ';' || line[0] == ','))
        line.erase(0, 1);
    std::vector<std::string> entries;
    while (!trim_text(line).empty()) entries.push_back(take_word(line));
    return entries;
}

std::vector<std::vector<std::string>> column_table(const std::vector<std::string>& lines) {
    std::vector<std::vector<std::string>> table(1);
    std::size_t widest = 0;
    int number = 0;
    for (const std::string& line : lines) {
        array1<std::string> fields;
        int count = 0;
        split_fields(count, line, fields);
        std::vector<std::string> row{std::to_string(++number)};
        for (int k = 1; k <= count; ++k) row.push_back(fields(k));
        widest = std::max(widest, row.size() - 1);
        table.push_back(std::move(row));
    }
    table[0].push_back("Line");
    for (std::size_t k = 1; k <= widest; ++k) table[0].push_back(std::to_string(k));
    return table;
}

namespace {

// The words of a column name, lower case: "Easting_Albers_m" gives "easting", "albers", "m".
std::vector<std::string> name_words(const std::string& name) {
    std::vector<std::string> words(1);
    for (char ch : name) {
        const auto c = static_cast<unsigned char>(ch);
        if (c == '_' || c == '-' || c == '.' || c == ' ' || c == '(' || c == ')' || c == '[' ||
            c == ']' || c == '"' || c == '\'') {
            if (!words.back().empty()) words.emplace_back();
        } else {
            words.back() += static_cast<char>(std::tolower(c));
        }
    }
    if (words.back().empty()) words.pop_back();
    return words;
}

using name_list = std::vector<std::vector<std::string>>;

// True when the name's leading words are one of `names`.
bool name_is(const std::vector<std::string>& words, const name_list& names) {
    for (const auto& wanted : names) {
        if (wanted.size() > words.size()) continue;
        if (std::equal(wanted.begin(), wanted.end(), words.begin())) return true;
    }
    return false;
}

const name_list x_names = {{"x"}, {"east"}, {"easting"}, {"eastings"}, {"xcoord"}, {"x", "coord"}};
const name_list y_names = {{"y"},         {"north"},  {"northing"},
                           {"northings"}, {"ycoord"}, {"y", "coord"}};
const name_list sensor_names = {{"sensor"},
                                {"z"},
                                {"elevation"},
                                {"elev"},
                                {"height"},
                                {"altitude"},
                                {"gps", "elevation"},
                                {"gps", "height"},
                                {"sensor", "elevation"}};
const name_list ground_names = {{"dtm"},        {"dem"},     {"ground"}, {"topo"},
                                {"topography"}, {"terrain"}, {"surface"}};
const name_list mag_names = {{"tmi"},
                             {"mag"},
                             {"magnetic"},
                             {"magnetics"},
                             {"rmi"},
                             {"tf"},
                             {"total", "field"},
                             {"totalfield"},
                             {"magnetic", "field"}};
const name_list grav_names = {{"grav"},    {"gravity"}, {"bouguer"}, {"free", "air"},
                              {"freeair"}, {"faa"},     {"gz"}};

}  // namespace

column_roles guess_columns(const std::vector<std::string>& names) {
    column_roles roles;
    const std::pair<int*, const name_list*> wanted[] = {
        {&roles.xpos, &x_names},     {&roles.ypos, &y_names},     {&roles.zpos, &sensor_names},
        {&roles.dtm, &ground_names}, {&roles.magpos, &mag_names}, {&roles.gravpos, &grav_names}};
    for (std::size_t k = 0; k < names.size(); ++k) {
        const std::vector<std::string> words = name_words(names[k]);
        if (words.empty()) continue;
        for (const auto& [column, list] : wanted) {
            if (*column == 0 && name_is(words, *list)) {
                *column = static_cast<int>(k) + 1;
                break;
            }
        }
    }
    return roles;
}

bool columns_from_names_line(const std::string& first_line, data_definition& d) {
    std::string first = first_line;
    if (trim_text(first).empty() || is_numeric_text(take_word(first))) return false;
    const column_roles roles = guess_columns(decode_names_line(first_line));
    d.nhead = 2;
    d.names_line = 1;
    d.xpos = roles.xpos;
    d.ypos = roles.ypos;
    d.zpos = roles.zpos;
    d.dtm = roles.dtm;
    d.magpos = roles.magpos;
    d.gravpos = roles.gravpos;
    return true;
}

}  // namespace trensil
