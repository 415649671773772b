// panel_screens FOLDER: pictures of the panel in several states, light and dark, at 1x and 2x.
#include <QApplication>
#include <QDir>
#include <QTextStream>

#include "tests/ui/panel/home_fixtures.h"
#include "tests/ui/qt/settle.h"
#include "ui/qt/panel_popup.h"

namespace tarnwick::qt {
namespace {

/// The panel on a desktop of one colour.
QImage picture(const Theme& theme, const Page& page, qreal ratio) {
    PanelPopup popup(
        theme, page, [](PanelAction) {}, true);
    popup.popUp(QRect(400, 0, 20, 20));
    settle();
    QImage image(popup.size() * ratio, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(ratio);
    image.fill(theme.isDark() ? QColor(0x3B4656) : QColor(0x8FA3B8));
    popup.render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
    popup.hide();
    return image;
}

int makePictures(const QDir& folder) {
    const testing::PlainByteCountFormatter formatter;
    for (const bool isDark : {false, true}) {
        const Theme theme(isDark);
        for (const testing::HomeState& state : testing::homeStates()) {
            for (const int ratio : {1, 2}) {
                const QString path = folder.filePath(
                    QString("home_%1_%2_%3x.png")
                        .arg(QString::fromUtf8(state.name.data(),
                                               static_cast<qsizetype>(state.name.size())))
                        .arg(isDark ? "dark" : "light")
                        .arg(ratio));
                if (!picture(theme, homePage(state.inputs, formatter), ratio).save(path)) {
                    QTextStream(stderr) << "cannot write " << path << '\n';
                    return 1;
                }
            }
        }
    }
    return 0;
}

}  // namespace
}  // namespace tarnwick::qt

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    if (argc != 2 || !QDir().mkpath(argv[1])) {
        QTextStream(stderr) << "usage: panel_screens FOLDER\n";
        return 2;
    }
    QFont font = QApplication::font();
    font.setFamily("Inter");
    font.setPointSizeF(11);
    QApplication::setFont(font);
    return tarnwick::qt::makePictures(QDir(argv[1]));
}
