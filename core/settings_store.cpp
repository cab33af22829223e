#include "core/settings_store.hpp"

#include <cstdlib>
#include <system_error>

#include "core/atomic_file.hpp"
#include "core/text.hpp"
#include "core/user_error.hpp"

namespace orvane {

int SettingsStore::readInt(std::string_view section, std::string_view key, int fallback) const {
    const auto text = read(section, key);
    if (!text) return fallback;
    return parseInteger(*text).value_or(fallback);
}

std::optional<std::string> MemorySettingsStore::read(std::string_view section,
                                                     std::string_view key) const {
    auto s = values_.find(std::string(section));
    if (s == values_.end()) return std::nullopt;
    auto k = s->second.find(std::string(key));
    if (k == s->second.end()) return std::nullopt;
    return k->second;
}

void MemorySettingsStore::write(std::string_view section, std::string_view key,
                                std::string_view value) {
    values_[std::string(section)][std::string(key)] = std::string(value);
}

void MemorySettingsStore::remove(std::string_view section, std::string_view key) {
    auto s = values_.find(std::string(section));
    if (s != values_.end()) s->second.erase(std::string(key));
}

SettingsMap parseIni(std::string_view text) {
    SettingsMap values;
    std::string section;
    std::size_t start = 0;
    while (start <= text.size()) {
        std::size_t end = text.find('\n', start);
        if (end == std::string_view::npos) end = text.size();
        const std::string_view line = trim(text.substr(start, end - start));
        start = end + 1;
        if (line.empty() || line.front() == ';' || line.front() == '#') continue;
        if (line.front() == '[' && line.back() == ']') {
            section = std::string(trim(line.substr(1, line.size() - 2)));
            continue;
        }
        const auto equals = line.find('=');
        if (equals == std::string_view::npos || section.empty()) continue;
        values[section][std::string(trim(line.substr(0, equals)))] =
            std::string(trim(line.substr(equals + 1)));
    }
    return values;
}

std::string formatIni(const SettingsMap& values) {
    std::string text;
    for (const auto& [section, entries] : values) {
        if (entries.empty()) continue;
        text += "[" + section + "]\n";
        for (const auto& [key, value] : entries) text += key + "=" + value + "\n";
        text += "\n";
    }
    return text;
}

IniSettingsStore::IniSettingsStore(std::filesystem::path path) : path_(std::move(path)) {
    std::error_code error;
    if (!std::filesystem::exists(path_, error)) return;
    try {
        values_ = MemorySettingsStore(parseIni(readTextFile(path_, 1u << 20)));
    } catch (const UserError&) {
        // An unreadable store starts empty: settings are a convenience.
    }
}

std::optional<std::string> IniSettingsStore::read(std::string_view section,
                                                  std::string_view key) const {
    return values_.read(section, key);
}

void IniSettingsStore::write(std::string_view section, std::string_view key,
                             std::string_view value) {
    values_.write(section, key, value);
    save();
}

void IniSettingsStore::remove(std::string_view section, std::string_view key) {
    values_.remove(section, key);
    save();
}

void IniSettingsStore::save() const {
    std::error_code error;
    if (path_.has_parent_path()) std::filesystem::create_directories(path_.parent_path(), error);
    writeFileAtomically(path_, formatIni(values_.values()));
}

std::filesystem::path defaultSettingsPath() {
    if (const char* xdg = std::getenv("XDG_CONFIG_HOME"); xdg && *xdg)
        return std::filesystem::path(xdg) / "orvane" / "orvane.ini";
    if (const char* home = std::getenv("HOME"); home && *home)
        return std::filesystem::path(home) / ".config" / "orvane" / "orvane.ini";
    return std::filesystem::path("orvane.ini");
}

}  // namespace orvane
