// SPDX-License-Identifier: MIT
// Build tool: compile_symbols OUTPUT.cpp SYMBOL.svg... Lets the SVG library draw each file onto a
// paint device that records what is drawn, and writes the recording as tables. It supports only
// what the symbols use; anything else is an error.
#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QPaintDevice>
#include <QPaintEngine>
#include <QPainter>
#include <QPainterPath>
#include <QSvgRenderer>
#include <QTextStream>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

constexpr int kGrid = 16;
/// A placeholder for the colour in which the symbol will be drawn.
const QColor kMarker(1, 2, 3);

[[noreturn]] void fail(const QString& file, const char* what) {
    std::fprintf(stderr, "compile_symbols: %s: %s\n", qPrintable(file), what);
    std::exit(EXIT_FAILURE);
}

struct Part {
    QPainterPath path;
    bool isCurrent;
    qreal strokeWidth;
};

class Recorder final : public QPaintEngine {
 public:
    explicit Recorder(QString file) : QPaintEngine(AllFeatures), file_(std::move(file)) {}

    bool begin(QPaintDevice*) override { return true; }
    bool end() override { return true; }
    Type type() const override { return User; }
    void updateState(const QPaintEngineState& changed) override {
        if (changed.state() & DirtyPen) {
            pen_ = changed.pen();
        }
        if (changed.state() & DirtyBrush) {
            brush_ = changed.brush();
        }
        if (changed.state() & DirtyTransform) {
            transform_ = changed.transform();
        }
        if (changed.state() & DirtyOpacity && changed.opacity() < 1) {
            fail(file_, "is not opaque");
        }
    }
    void drawPath(const QPainterPath& path) override {
        if (brush_.style() != Qt::NoBrush) {
            if (brush_.style() != Qt::SolidPattern) {
                fail(file_, "has a fill that is no plain colour");
            }
            parts.push_back({transform_.map(path), isCurrent(brush_.color()), 0});
        }
        if (pen_.style() != Qt::NoPen) {
            if (pen_.capStyle() != Qt::RoundCap || pen_.joinStyle() != Qt::RoundJoin) {
                fail(file_, "has a stroke without round caps and joins");
            }
            const qreal width = pen_.widthF() * std::sqrt(std::abs(transform_.determinant()));
            parts.push_back({transform_.map(path), isCurrent(pen_.color()), width});
        }
    }
    void drawPolygon(const QPointF* points, int count, PolygonDrawMode mode) override {
        QPainterPath path(points[0]);
        for (int i = 1; i < count; ++i) {
            path.lineTo(points[i]);
        }
        if (mode != PolylineMode) {
            path.closeSubpath();
        }
        drawPath(path);
    }
    void drawPixmap(const QRectF&, const QPixmap&, const QRectF&) override {
        fail(file_, "holds a picture");
    }

    std::vector<Part> parts;

 private:
    bool isCurrent(const QColor& color) const {
        if (color.alpha() != 255) {
            fail(file_, "is not opaque");
        }
        if (color.rgb() == kMarker.rgb()) {
            return true;
        }
        if (color.rgb() != QColor(Qt::white).rgb()) {
            fail(file_, "has a colour other than currentColor and white");
        }
        return false;
    }

    QString file_;
    QPen pen_;
    QBrush brush_;
    QTransform transform_;
};

class RecordingDevice final : public QPaintDevice {
 public:
    explicit RecordingDevice(const QString& file) : recorder(file) {}

    QPaintEngine* paintEngine() const override { return &recorder; }

    mutable Recorder recorder;

 protected:
    int metric(PaintDeviceMetric metric) const override {
        switch (metric) {
            case PdmDevicePixelRatio:
                return 1;
            case PdmDevicePixelRatioScaled:
                return static_cast<int>(devicePixelRatioFScale());
            case PdmDpiX:
            case PdmDpiY:
            case PdmPhysicalDpiX:
            case PdmPhysicalDpiY:
                return 96;
            case PdmDepth:
                return 32;
            default:
                return kGrid;
        }
    }
};

std::vector<Part> partsOf(const QString& file) {
    QFile svg(file);
    if (!svg.open(QIODevice::ReadOnly)) {
        fail(file, "cannot be read");
    }
    QByteArray text = svg.readAll();
    text.replace("currentColor", kMarker.name().toLatin1());
    QSvgRenderer renderer(text);
    if (!renderer.isValid() || renderer.viewBox() != QRect(0, 0, kGrid, kGrid)) {
        fail(file, "is no drawing on a grid of 16");
    }
    RecordingDevice device(file);
    QPainter painter(&device);
    renderer.render(&painter, QRectF(0, 0, kGrid, kGrid));
    painter.end();
    if (device.recorder.parts.empty()) {
        fail(file, "draws nothing");
    }
    return device.recorder.parts;
}

const char* kindName(QPainterPath::ElementType type) {
    switch (type) {
        case QPainterPath::MoveToElement:
            return "move";
        case QPainterPath::LineToElement:
            return "line";
        case QPainterPath::CurveToElement:
            return "curve";
        case QPainterPath::CurveToDataElement:
            return "curveData";
    }
    return "";
}

QString number(qreal value) {
    QString text = QString::number(value, 'f', 4);
    return text + 'F';
}

void writeParts(QTextStream& out, int symbol, const std::vector<Part>& parts) {
    for (std::size_t i = 0; i < parts.size(); ++i) {
        out << "constexpr SymbolPoint kPoints" << symbol << '_' << i << "[] = {\n";
        for (int e = 0; e < parts[i].path.elementCount(); ++e) {
            const QPainterPath::Element element = parts[i].path.elementAt(e);
            out << "    {SymbolPoint::Kind::" << kindName(element.type) << ", " << number(element.x)
                << ", " << number(element.y) << "},\n";
        }
        out << "};\n";
    }
    out << "constexpr SymbolPart kParts" << symbol << "[] = {\n";
    for (std::size_t i = 0; i < parts.size(); ++i) {
        out << "    {kPoints" << symbol << '_' << i
            << ", SymbolPart::Ink::" << (parts[i].isCurrent ? "current" : "white") << ", "
            << number(parts[i].strokeWidth) << ", "
            << (parts[i].path.fillRule() == Qt::OddEvenFill ? "true" : "false") << "},\n";
    }
    out << "};\n";
}

}  // namespace

int main(int argc, char* argv[]) {
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    QString tables;
    QString names;
    QTextStream out(&tables);
    for (int i = 2; i < arguments.size(); ++i) {
        writeParts(out, i, partsOf(arguments[i]));
        names += QString("    {\"%1\", kParts%2},\n")
                     .arg(QFileInfo(arguments[i]).completeBaseName())
                     .arg(i);
    }
    QFile output(arguments.value(1));
    if (names.isEmpty() || !output.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        fail(arguments.value(1), "cannot be written, or there is nothing to write");
    }
    QTextStream file(&output);
    file << "// Made from the SVG files by compile_symbols.\n"
            "#include \"ui/symbols/symbol_drawing.h\"\n\n"
            "namespace tarnwick {\nnamespace {\n\n"
         << tables << "\nconstexpr SymbolDrawing kDrawings[] = {\n"
         << names << "};\n\n}  // namespace\n\n"
         << "std::span<const SymbolDrawing> symbolDrawings() {\n    return kDrawings;\n}\n\n"
            "}  // namespace tarnwick\n";
    file.flush();
    return output.error() == QFileDevice::NoError ? EXIT_SUCCESS : EXIT_FAILURE;
}
