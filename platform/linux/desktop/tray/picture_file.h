// The icon as a file, for tray hosts that draw no pixmaps from the bus.
#pragma once

#include <QImage>
#include <QString>
#include <map>
#include <string>

#include "platform/linux/desktop/tray/item_picture.h"

namespace tarnwick::platform {

/// Writes each different icon once. Each has its own name, because hosts cache what they read by
/// name. The destructor removes the files. Main thread.
class PictureFile final {
 public:
    /// The files lie in the folder "tarnwick" below `runtimeFolder`, which is made when needed. If
    /// `runtimeFolder` is empty, nothing is written.
    explicit PictureFile(std::string runtimeFolder);
    ~PictureFile();
    PictureFile(const PictureFile&) = delete;
    PictureFile& operator=(const PictureFile&) = delete;

    /// Path of the icon's file; empty when it could not be written.
    QString path(const IconPainter& painter, const ItemIcon& icon);

 private:
    QString folder_;
    /// The written files: name to full path.
    std::map<QString, QString> written_;
};

}  // namespace tarnwick::platform
