#include "qt_settings_store.h"

#include <QSettings>

namespace trensil {

namespace {
QString key_of(const std::string& section, const std::string& key) {
    return QString::fromStdString(section) + "/" + QString::fromStdString(key);
}
}  // namespace

std::string qt_settings_store::get_setting(const std::string& application,
                                           const std::string& section,
                                           const std::string& key) const {
    const QSettings settings(QString::fromStdString(application), "Trensil");
    const QVariant value = settings.value(key_of(section, key));
    if (!value.isValid()) return no_setting_value;
    return value.toString().toStdString();
}

void qt_settings_store::save_setting(const std::string& application, const std::string& section,
                                     const std::string& key, const std::string& value) {
    QSettings settings(QString::fromStdString(application), "Trensil");
    settings.setValue(key_of(section, key), QString::fromStdString(value));
}

}  // namespace trensil
