// SPDX-License-Identifier: MIT
// Runs the widget tests in one application without a display, in a home of its own.
#include <QApplication>
#include <QFile>
#include <QTemporaryDir>
#include <algorithm>
#include <gtest/gtest.h>

int main(int argc, char** argv) {
    const QTemporaryDir home;
    qputenv("HOME", home.path().toUtf8());
    qputenv("XDG_RUNTIME_DIR", home.path().toUtf8());
    // As many points at every scale.
    const int pixels = qRound(800 * std::max(1.0, qgetenv("QT_SCALE_FACTOR").toDouble()));
    const QByteArray size = QByteArray::number(pixels);
    QFile screens(home.filePath("screens.json"));
    if (!screens.open(QIODevice::WriteOnly) ||
        screens.write("{\"screens\":[{\"name\":\"screen\",\"x\":0,\"y\":0,\"width\":" + size +
                      ",\"height\":" + size +
                      ",\"logicalDpi\":96,\"logicalBaseDpi\":96,\"dpr\":1}]}") < 0) {
        return 1;
    }
    screens.close();
    qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" + screens.fileName().toUtf8());
    // Paints at once instead of a few milliseconds later.
    qputenv("QT_QPA_UPDATE_IDLE_TIME", "0");
    testing::InitGoogleTest(&argc, argv);
    QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
