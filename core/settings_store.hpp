#pragma once
// The per-user settings store: named values by section and key. The program
// uses the sections "Settings" (window placement and preferences) and "Files"
// (recent files). The terminal and tests use an INI file or memory; the
// desktop program may use the same INI file.
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace orvane {

class SettingsStore {
public:
    virtual ~SettingsStore() = default;
    virtual std::optional<std::string> read(std::string_view section, std::string_view key) const = 0;
    virtual void write(std::string_view section, std::string_view key, std::string_view value) = 0;
    virtual void remove(std::string_view section, std::string_view key) = 0;

    // Integer value, or the fallback when absent or unreadable.
    int readInt(std::string_view section, std::string_view key, int fallback) const;
};

using SettingsMap = std::map<std::string, std::map<std::string, std::string>>;

class MemorySettingsStore final : public SettingsStore {
public:
    MemorySettingsStore() = default;
    explicit MemorySettingsStore(SettingsMap values) : values_(std::move(values)) {}
    std::optional<std::string> read(std::string_view section, std::string_view key) const override;
    void write(std::string_view section, std::string_view key, std::string_view value) override;
    void remove(std::string_view section, std::string_view key) override;
    const SettingsMap& values() const { return values_; }

private:
    SettingsMap values_;
};

// An INI file: "[Section]" lines and "key=value" lines. Every write rewrites the
// file atomically. Unreadable lines are ignored (the store is a convenience).
class IniSettingsStore final : public SettingsStore {
public:
    explicit IniSettingsStore(std::filesystem::path path);
    std::optional<std::string> read(std::string_view section, std::string_view key) const override;
    void write(std::string_view section, std::string_view key, std::string_view value) override;
    void remove(std::string_view section, std::string_view key) override;
    const std::filesystem::path& path() const { return path_; }

private:
    void save() const;
    std::filesystem::path path_;
    MemorySettingsStore values_;
};

// $XDG_CONFIG_HOME/orvane/orvane.ini, else $HOME/.config/orvane/orvane.ini.
std::filesystem::path defaultSettingsPath();

SettingsMap parseIni(std::string_view text);
std::string formatIni(const SettingsMap& values);

}  // namespace orvane
