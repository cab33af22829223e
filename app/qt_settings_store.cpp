#include "app/qt_settings_store.hpp"

#include <QString>

namespace orvane::app {

namespace {

QString settingsKey(std::string_view section, std::string_view key) {
    return QString::fromUtf8(section.data(), static_cast<qsizetype>(section.size())) + '/' +
           QString::fromUtf8(key.data(), static_cast<qsizetype>(key.size()));
}

}  // namespace

std::filesystem::path settingsFileIn(const std::filesystem::path& dataFolder) { return dataFolder / "orvane.ini"; }

QtSettingsStore::QtSettingsStore(const std::filesystem::path& file)
    : settings_(QString::fromStdString(file.string()), QSettings::IniFormat) {}

std::optional<std::string> QtSettingsStore::read(std::string_view section, std::string_view key) const {
    std::lock_guard lock(mutex_);
    const QVariant value = settings_.value(settingsKey(section, key));
    if (!value.isValid()) return std::nullopt;
    return value.toString().toStdString();
}

void QtSettingsStore::write(std::string_view section, std::string_view key, std::string_view value) {
    std::lock_guard lock(mutex_);
    settings_.setValue(settingsKey(section, key), QString::fromUtf8(value.data(), static_cast<qsizetype>(value.size())));
}

void QtSettingsStore::remove(std::string_view section, std::string_view key) {
    std::lock_guard lock(mutex_);
    settings_.remove(settingsKey(section, key));
}

void QtSettingsStore::flush() {
    std::lock_guard lock(mutex_);
    settings_.sync();
}

}  // namespace orvane::app
