#include "app/picture_export.hpp"

#include <QPainter>
#include <QPixmap>
#include <QSvgGenerator>

#include "core/text.hpp"
#include "core/user_error.hpp"

namespace orvane::app {

namespace {

bool writeSvg(QWidget& widget, const QString& file) {
    QSvgGenerator generator;
    generator.setFileName(file);
    generator.setSize(widget.size());
    generator.setViewBox(QRect(QPoint(0, 0), widget.size()));
    generator.setTitle(widget.windowTitle());
    QPainter painter;
    if (!painter.begin(&generator)) return false;
    widget.render(&painter);
    return painter.end();
}

}  // namespace

void exportPicture(QWidget& widget, const std::filesystem::path& file) {
    const std::string suffix = toLower(file.extension().string());
    const auto temporary = std::filesystem::path(file.string() + ".part");
    const QString target = QString::fromStdString(temporary.string());
    const bool written = suffix == ".svg" ? writeSvg(widget, target) : widget.grab().save(target, "PNG");
    std::error_code error;
    if (written) std::filesystem::rename(temporary, file, error);
    if (!written || error) {
        std::filesystem::remove(temporary, error);
        throw UserError("Error in saving picture", file.string() + ": cannot be written");
    }
}

}  // namespace orvane::app
