// SPDX-License-Identifier: MIT
// panel_screens FOLDER: pictures of the panel's pages in every state that the tests keep as text,
// and over every recorded machine while it is calm and while it is in trouble; light and dark, at
// the scale that QT_SCALE_FACTOR says; at 1x one machine with larger fonts, too.
#include <QApplication>
#include <QDir>
#include <QTemporaryFile>
#include <QTextStream>
#include <cmath>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "tests/platform/linux/machine_tree.h"
#include "tests/ui/panel/detail_fixtures.h"
#include "tests/ui/panel/home_fixtures.h"
#include "tests/ui/panel/recorded_panel.h"
#include "tests/ui/qt/settle.h"
#include "ui/qt/panel_popup.h"

namespace tarnwick::qt {
namespace {

/// The panel on a desktop of one colour.
QImage picture(const Theme& theme, const Page& page) {
    PanelPopup popup(
        theme, page, [](PanelAction) {}, PanelSurface::popUp, true);
    popup.popUp(QRect(400, 0, 20, 20));
    settle();
    const qreal ratio = popup.devicePixelRatio();
    QImage image(popup.size() * ratio, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(ratio);
    image.fill(theme.isDark() ? QColor(0x3B4656) : QColor(0x8FA3B8));
    popup.render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
    popup.hide();
    return image;
}

// The program can do all of it.
const std::set<PanelAction> kActions = {
    PanelAction::refresh, PanelAction::showSettings,     PanelAction::openActivityMonitor,
    PanelAction::quit,    PanelAction::showMemoryDetail, PanelAction::showPerformanceDetail,
    PanelAction::goBack};

using Pages = std::vector<std::pair<std::string, Page>>;

/// The processes of the recorded machines that work hard, with their shares of all processors.
std::map<int, double> hardWork(const std::string& machine) {
    const std::map<std::string, std::map<int, double>> shares = {
        {"handheld", {{1502, 0.75}, {900, 0.125}}},
        {"laptop", {{2301, 0.5}, {2410, 0.25}, {3055, 0.125}}},
        {"workstation", {{4410, 0.5}, {2200, 0.25}, {4475, 0.125}}},
    };
    const auto found = shares.find(machine);
    return found == shares.end() ? std::map<int, double>() : found->second;
}

/// The three pages over a recorded machine, after a minute that is worth a curve.
void addMachine(const std::string& machine, Pages& pages) {
    // More than a curve shows.
    constexpr int refreshes = 36;
    for (const bool isInTrouble : {false, true}) {
        // The pages' texts are made when they are drawn.
        static std::vector<std::unique_ptr<testing::RecordedPanel>> machines;
        testing::RecordedPanel& panel =
            *machines.emplace_back(std::make_unique<testing::RecordedPanel>(machine));
        if (isInTrouble) {
            panel.fill();
        }
        for (int i = 0; i < refreshes; ++i) {
            // It ends at a peak.
            const int left = refreshes - 1 - i;
            const double wave = std::cos(left * 0.7) * std::cos(left * 0.23);
            panel.work(isInTrouble ? 0.9 + wave * 0.09 : 0.12 + wave * 0.08,
                       isInTrouble ? hardWork(machine) : std::map<int, double>());
        }
        const std::string name = "machine_" + machine + (isInTrouble ? "_trouble" : "_calm");
        for (const auto& [page, tab] : {std::pair{"home", MenuTab::home},
                                        {"memory", MenuTab::memoryDetail},
                                        {"performance", MenuTab::performanceDetail}}) {
            panel.show(tab);
            pages.emplace_back(name + '_' + page, panel.page());
        }
    }
}

Pages pages() {
    Pages pages;
    static const testing::PlainByteCountFormatter formatter;
    for (testing::HomeState state : testing::homeStates()) {
        state.inputs.enabledActions = kActions;
        pages.emplace_back("home_" + std::string(state.name), homePage(state.inputs, formatter));
    }
    for (testing::MemoryDetailState state : testing::memoryDetailStates()) {
        state.inputs.enabledActions = kActions;
        pages.emplace_back("memory_" + std::string(state.name),
                           memoryDetailPage(state.inputs, formatter));
    }
    for (testing::PerformanceDetailState state : testing::performanceDetailStates()) {
        state.inputs.enabledActions = kActions;
        pages.emplace_back("performance_" + std::string(state.name),
                           performanceDetailPage(state.inputs, formatter));
    }
    for (const std::string& machine : platform::testing::recordedMachines()) {
        addMachine(machine, pages);
    }
    return pages;
}

/// The names of the pictures begin with `prefix`.
bool makePictures(const QDir& folder, const QString& prefix, const Pages& pages) {
    for (const auto& [name, page] : pages) {
        for (const bool isDark : {false, true}) {
            const Theme theme(isDark);
            const QString path = folder.filePath(QString("%1%2_%3_%4x.png")
                                                     .arg(prefix, QString::fromStdString(name))
                                                     .arg(isDark ? "dark" : "light")
                                                     .arg(qApp->devicePixelRatio()));
            if (!picture(theme, page).save(path)) {
                QTextStream(stderr) << "cannot write " << path << '\n';
                return false;
            }
        }
    }
    return true;
}

/// The same on desktops with larger fonts, whose size in percent goes into the names.
bool makeLargePictures(const QDir& folder, const QFont& usual) {
    Pages pages;
    addMachine("workstation", pages);
    for (const int percent : {125, 150, 200}) {
        QFont font = usual;
        font.setPointSizeF(usual.pointSizeF() * percent / 100);
        QApplication::setFont(font);
        if (!makePictures(folder, QString("font%1_").arg(percent), pages)) {
            return false;
        }
    }
    QApplication::setFont(usual);
    return true;
}

}  // namespace
}  // namespace tarnwick::qt

int main(int argc, char** argv) {
    // A screen on which every page has room, at every scale.
    QTemporaryFile screen;
    if (!screen.open() ||
        screen.write(R"({"screens": [{"name": "screen", "x": 0, "y": 0, "width": 2400,
                         "height": 2400, "logicalDpi": 96, "dpr": 1}]})") < 0 ||
        !screen.flush()) {
        return 1;
    }
    qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" + screen.fileName().toUtf8());
    QApplication application(argc, argv);
    if (argc != 2 || !QDir().mkpath(argv[1])) {
        QTextStream(stderr) << "usage: panel_screens FOLDER\n";
        return 2;
    }
    QFont font = QApplication::font();
    font.setFamily("Inter");
    font.setPointSizeF(11);
    QApplication::setFont(font);
    const QDir folder(argv[1]);
    bool isWritten = tarnwick::qt::makePictures(folder, {}, tarnwick::qt::pages());
    // A scale shows nothing more of large fonts.
    if (isWritten && application.devicePixelRatio() == 1) {
        isWritten = tarnwick::qt::makeLargePictures(folder, font);
    }
    return isWritten ? 0 : 1;
}
