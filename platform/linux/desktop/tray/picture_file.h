// The icon as a file, for tray hosts that draw no pixmaps from the bus.
#pragma once

#include <QImage>
#include <QString>
#include <map>
#include <string>

#include "platform/linux/desktop/tray/item_picture.h"

namespace tarnwick::platform {

/// Writes each different icon once, under a name of its own because hosts keep what they read by
/// name, and takes the files away again when destroyed. Main thread.
class PictureFile final {
 public:
    /// The files go into the folder "tarnwick" below `runtimeFolder`, made when it is needed. With
    /// an empty path nothing is written.
    explicit PictureFile(std::string runtimeFolder);
    ~PictureFile();
    PictureFile(const PictureFile&) = delete;
    PictureFile& operator=(const PictureFile&) = delete;

    /// Path of the icon's file; empty when it could not be written.
    QString path(const IconPainter& painter, const ItemIcon& icon);

 private:
    QString folder_;
    /// Name to whole path, of what was written.
    std::map<QString, QString> written_;
};

}  // namespace tarnwick::platform
