#include "app/recent_files.hpp"

#include <algorithm>

namespace orvane::app {

namespace {

std::string keyOf(int number) { return "file" + std::to_string(number); }

}  // namespace

void RecentFiles::load() {
    paths_.clear();
    for (int number = 1; number <= kMaxRecentFiles; ++number) {
        const auto path = settings_.read(kFilesSection, keyOf(number));
        if (path && !path->empty()) paths_.push_back(*path);
    }
}

void RecentFiles::add(const std::string& path) {
    std::erase(paths_, path);
    paths_.insert(paths_.begin(), path);
    if (paths_.size() > kMaxRecentFiles) paths_.resize(kMaxRecentFiles);
    save();
}

void RecentFiles::save() const {
    for (int number = 1; number <= kMaxRecentFiles; ++number) {
        const auto index = static_cast<std::size_t>(number - 1);
        if (index < paths_.size())
            settings_.write(kFilesSection, keyOf(number), paths_[index]);
        else
            settings_.remove(kFilesSection, keyOf(number));
    }
}

std::string recentFileCaption(int number, const std::string& path) {
    return "&" + std::to_string(number) + " " + path;
}

}  // namespace orvane::app
