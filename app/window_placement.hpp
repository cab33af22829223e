#pragma once
// The main window's placement in the settings store: "MainLeft", "MainTop",
// "MainWidth" and "MainHeight" under "Settings", in twips (1/1440 inch),
// defaults 1000, 1000, 6500, 6500. Screen pixels are taken at 96 per inch,
// 15 twips to the pixel, whatever the screen, so that a stored placement
// means the same window on every machine.
#include <QRect>

#include "core/settings_store.hpp"

namespace orvane::app {

inline constexpr int kTwipsPerPixel = 15;

struct Placement {
    int left = 1000;  // twips
    int top = 1000;
    int width = 6500;
    int height = 6500;
    friend bool operator==(const Placement&, const Placement&) = default;
};

Placement readPlacement(const SettingsStore& settings);
void writePlacement(SettingsStore& settings, const Placement& placement);

QRect pixelsOf(const Placement& placement);
Placement placementOf(const QRect& pixels);

}  // namespace orvane::app
