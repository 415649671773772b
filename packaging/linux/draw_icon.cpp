// SPDX-License-Identifier: MIT
// Draws an icon as a picture while the program is built: draw_icon DRAWING.svg PIXELS PICTURE.png
#include <QImage>
#include <QPainter>
#include <QString>
#include <QSvgRenderer>
#include <cstdio>
#include <cstdlib>

int main(int argc, char* argv[]) {
    const int pixels = argc == 4 ? QString::fromLocal8Bit(argv[2]).toInt() : 0;
    if (pixels < 1) {
        std::fputs("usage: draw_icon DRAWING.svg PIXELS PICTURE.png\n", stderr);
        return EXIT_FAILURE;
    }
    QSvgRenderer drawing(QString::fromLocal8Bit(argv[1]));
    QImage picture(pixels, pixels, QImage::Format_ARGB32);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    drawing.render(&painter);
    painter.end();
    if (!drawing.isValid() || !picture.save(QString::fromLocal8Bit(argv[3]))) {
        std::fprintf(stderr, "draw_icon: %s cannot be drawn as %s\n", argv[1], argv[3]);
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
