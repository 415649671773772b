// panel_screens FOLDER: pictures of the panel in several states and over recorded machines at work,
// light and dark, at 1x and 2x.
#include <QApplication>
#include <QDir>
#include <QTextStream>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "tests/ui/panel/detail_fixtures.h"
#include "tests/ui/panel/home_fixtures.h"
#include "tests/ui/panel/recorded_panel.h"
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

using Pages = std::vector<std::pair<std::string, Page>>;

Pages pages() {
    Pages pages;
    // The pages' texts are made when they are drawn.
    static const testing::PlainByteCountFormatter formatter;
    for (const testing::HomeState& state : testing::homeStates()) {
        pages.emplace_back("home_" + std::string(state.name), homePage(state.inputs, formatter));
    }
    for (const testing::MemoryDetailState& state : testing::memoryDetailStates()) {
        pages.emplace_back("memory_" + std::string(state.name),
                           memoryDetailPage(state.inputs, formatter));
    }
    for (const testing::PerformanceDetailState& state : testing::performanceDetailStates()) {
        pages.emplace_back("performance_" + std::string(state.name),
                           performanceDetailPage(state.inputs, formatter));
    }
    const std::map<std::string, std::map<int, double>> shares = {
        {"container-host", {}},
        {"damaged", {}},
        {"handheld", {{1502, 0.75}, {900, 0.125}}},
        {"laptop", {{2301, 0.5}, {2410, 0.25}, {3055, 0.125}}},
        {"old-kernel", {}},
        {"server", {}},
        {"two-batteries", {}},
        {"virtual-machine", {}},
        {"workstation", {{4410, 0.5}, {2200, 0.25}, {4475, 0.125}}},
    };
    for (const auto& [machine, processes] : shares) {
        testing::RecordedPanel panel(machine);
        panel.work(processes.empty() ? 0.3 : 0.95, processes);
        pages.emplace_back("machine_" + machine, panel.page());
    }
    return pages;
}

int makePictures(const QDir& folder) {
    for (const auto& [name, page] : pages()) {
        for (const bool isDark : {false, true}) {
            const Theme theme(isDark);
            for (const int ratio : {1, 2}) {
                const QString path = folder.filePath(QString("%1_%2_%3x.png")
                                                         .arg(QString::fromStdString(name))
                                                         .arg(isDark ? "dark" : "light")
                                                         .arg(ratio));
                if (!picture(theme, page, ratio).save(path)) {
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
