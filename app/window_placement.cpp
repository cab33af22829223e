#include "app/window_placement.hpp"

namespace orvane::app {

namespace {

constexpr const char* kSection = "Settings";

}  // namespace

Placement readPlacement(const SettingsStore& settings) {
    const Placement defaults;
    return {settings.readInt(kSection, "MainLeft", defaults.left), settings.readInt(kSection, "MainTop", defaults.top),
            settings.readInt(kSection, "MainWidth", defaults.width),
            settings.readInt(kSection, "MainHeight", defaults.height)};
}

void writePlacement(SettingsStore& settings, const Placement& placement) {
    settings.write(kSection, "MainLeft", std::to_string(placement.left));
    settings.write(kSection, "MainTop", std::to_string(placement.top));
    settings.write(kSection, "MainWidth", std::to_string(placement.width));
    settings.write(kSection, "MainHeight", std::to_string(placement.height));
}

QRect pixelsOf(const Placement& placement) {
    return {placement.left / kTwipsPerPixel, placement.top / kTwipsPerPixel, placement.width / kTwipsPerPixel,
            placement.height / kTwipsPerPixel};
}

Placement placementOf(const QRect& pixels) {
    return {pixels.x() * kTwipsPerPixel, pixels.y() * kTwipsPerPixel, pixels.width() * kTwipsPerPixel,
            pixels.height() * kTwipsPerPixel};
}

}  // namespace orvane::app
