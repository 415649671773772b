#include "platform/linux/desktop/tray/picture_file.h"

#include <QDir>
#include <QFile>
#include <QSaveFile>

namespace tarnwick::platform {
namespace {

// Edge of the picture in pixels. Hosts scale it down to their own size.
constexpr int kPixels = 64;

}  // namespace

PictureFile::PictureFile(std::string runtimeFolder) {
    if (!runtimeFolder.empty()) {
        folder_ = QDir(QString::fromStdString(runtimeFolder)).filePath("tarnwick");
    }
}

PictureFile::~PictureFile() {
    for (const auto& [name, path] : written_) {
        QFile::remove(path);
    }
    if (!written_.empty()) {
        // Fails if another program keeps something in the folder; then the folder must stay.
        QDir().rmdir(folder_);
    }
}

QString PictureFile::path(const IconPainter& painter, const ItemIcon& icon) {
    if (folder_.isEmpty()) {
        return {};
    }
    const QString name = QString("%1-%2-%3.png")
                             .arg(QString::fromStdString(icon.symbol).replace('/', '_'))
                             .arg(static_cast<int>(icon.tint))
                             .arg(icon.dark ? "dark" : "light");
    if (const auto known = written_.find(name); known != written_.end()) {
        return known->second;
    }
    const QString path = QDir(folder_).filePath(name);
    QSaveFile file(path);
    if (!QDir().mkpath(folder_) || !file.open(QIODevice::WriteOnly) ||
        !squarePicture(painter, icon, kPixels).save(&file, "PNG") || !file.commit()) {
        return {};
    }
    written_.emplace(name, path);
    return path;
}

}  // namespace tarnwick::platform
