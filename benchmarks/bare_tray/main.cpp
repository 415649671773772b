// SPDX-License-Identifier: MIT
// A status item, a timer that does nothing every ten seconds, and a plain panel that a click on the
// item opens and closes. It measures and draws nothing else: it is the floor of the cost of any
// program with this toolkit and a status item.

#include <QApplication>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QImage>
#include <QLabel>
#include <QPainter>
#include <QPointer>
#include <QScreen>
#include <QTimer>
#include <QVBoxLayout>
#include <QtEndian>
#include <chrono>

namespace {

constexpr int kIconSize = 22;
constexpr QSize kPanelSize(320, 480);
constexpr int kRows = 12;

/// A picture as the tray's protocol wants it: width, height, pixels in network byte order.
struct Pixmap {
    int width = 0;
    int height = 0;
    QByteArray pixels;
};

QDBusArgument& operator<<(QDBusArgument& argument, const Pixmap& pixmap) {
    argument.beginStructure();
    argument << pixmap.width << pixmap.height << pixmap.pixels;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, Pixmap& pixmap) {
    argument.beginStructure();
    argument >> pixmap.width >> pixmap.height >> pixmap.pixels;
    argument.endStructure();
    return argument;
}

/// A blue disc.
QList<Pixmap> icon() {
    QImage image(kIconSize, kIconSize, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0x2060E0));
    painter.drawEllipse(image.rect());
    painter.end();
    QByteArray pixels(image.sizeInBytes(), Qt::Uninitialized);
    const auto* source = reinterpret_cast<const quint32*>(image.constBits());
    qToBigEndian<quint32>(source, image.width() * image.height(), pixels.data());
    return {{image.width(), image.height(), pixels}};
}

class Item : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierItem")
    Q_PROPERTY(QString Category READ category)
    Q_PROPERTY(QString Id READ id)
    Q_PROPERTY(QString Title READ id)
    Q_PROPERTY(QString Status READ status)
    Q_PROPERTY(bool ItemIsMenu READ itemIsMenu)
    Q_PROPERTY(QList<Pixmap> IconPixmap READ iconPixmap)

 public:
    QString category() const { return QStringLiteral("ApplicationStatus"); }
    QString id() const { return QStringLiteral("bare_tray"); }
    QString status() const { return QStringLiteral("Active"); }
    bool itemIsMenu() const { return false; }
    QList<Pixmap> iconPixmap() const { return icon(); }

 public Q_SLOTS:
    void Activate(int, int) {
        if (panel_) {
            panel_->close();
            return;
        }
        panel_ = new QWidget(nullptr, Qt::Popup | Qt::FramelessWindowHint);
        panel_->setAttribute(Qt::WA_DeleteOnClose);
        auto* rows = new QVBoxLayout(panel_);
        for (int row = 1; row <= kRows; ++row) {
            rows->addWidget(new QLabel(QStringLiteral("A row with a text, number %1").arg(row)));
        }
        const QRect screen = panel_->screen()->availableGeometry();
        panel_->setFixedSize(kPanelSize);
        panel_->move(screen.right() - kPanelSize.width(), screen.top());
        panel_->show();
    }

 private:
    QPointer<QWidget> panel_;
};

}  // namespace

Q_DECLARE_METATYPE(Pixmap)

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    qDBusRegisterMetaType<Pixmap>();
    qDBusRegisterMetaType<QList<Pixmap>>();

    Item item;
    QDBusConnection bus = QDBusConnection::sessionBus();
    bus.registerObject(QStringLiteral("/StatusNotifierItem"), &item,
                       QDBusConnection::ExportAllProperties | QDBusConnection::ExportAllSlots);
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.kde.StatusNotifierWatcher"), QStringLiteral("/StatusNotifierWatcher"),
        QStringLiteral("org.kde.StatusNotifierWatcher"),
        QStringLiteral("RegisterStatusNotifierItem"));
    call << bus.baseService();
    if (bus.call(call).type() == QDBusMessage::ErrorMessage) {
        return 1;
    }

    QTimer timer;
    timer.setTimerType(Qt::CoarseTimer);
    timer.start(std::chrono::seconds(10));
    return QApplication::exec();
}

#include "main.moc"
