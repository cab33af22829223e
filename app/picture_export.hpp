#pragma once
// Pictures of a window (a chart) as PNG or SVG, by the suffix of the file
// name; written beside the file and renamed, so that a failed export leaves
// no half-written picture. Throws UserError naming the file.
#include <QWidget>
#include <filesystem>

namespace orvane::app {

void exportPicture(QWidget& widget, const std::filesystem::path& file);

}  // namespace orvane::app
