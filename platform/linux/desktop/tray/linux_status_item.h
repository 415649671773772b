// The status item on Linux: on the bus where a StatusNotifier host draws it, else in the tray of
// the older kind.
#pragma once

#include <QDBusConnection>
#include <QImage>
#include <QObject>
#include <QRect>
#include <QTimer>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/desktop.h"
#include "platform/linux/desktop/tray/dbus_menu.h"
#include "platform/linux/desktop/tray/embedded_tray.h"
#include "platform/linux/desktop/tray/item_picture.h"
#include "platform/linux/desktop/tray/notifier_registration.h"
#include "platform/linux/desktop/tray/picture_file.h"
#include "platform/linux/desktop/tray/status_notifier_item.h"
#include "platform/linux/desktop/tray/tray_presentation.h"

namespace tarnwick::platform {

/// Follows hosts and trays as they come and go. Main thread; never waits for the bus.
class LinuxStatusItem final : public QObject, public StatusItem {
    Q_OBJECT

 public:
    struct Options {
        /// Draws the icon; required.
        IconPainter painter;
        /// The desktop prefers dark.
        bool dark = false;
        /// Tells the user one line.
        std::function<void(std::string_view)> notice;
        /// Milliseconds without any tray after which the user is told, once.
        int noTrayMilliseconds = 5000;
        /// Milliseconds for which a token of the compositor is kept for the window that a press
        /// opens.
        int tokenMilliseconds = 2000;
        /// Names the program of a process.
        NotifierRegistration::ProgramOf programOf = programOfProcess;
        /// How soon a host that refuses the item is asked again.
        NotifierRegistration::RetryDelays retryDelays{};
        /// Folder for the picture file that some hosts want in place of pixmaps.
        std::string runtimeFolder;
    };

    /// Fills in what a session has: the notice on standard error, the runtime folder.
    static Options sessionOptions(IconPainter painter, bool dark);

    /// `bus` may be unconnected: then only a tray of the older kind is looked for.
    LinuxStatusItem(QDBusConnection bus, Options options);
    ~LinuxStatusItem() override;

    void setContent(const StatusItemContent& content) override;
    void setActions(StatusItemActions actions) override;
    bool inTray() const override;
    bool performClick() override;

    /// The desktop's preference changed: draws the icon in the other shade.
    void setDark(bool dark);

    /// The item's place on the screen as far as it is known, for a panel beside it: the icon's in
    /// a tray of the older kind, else where the item was last clicked, as high as the bar it is
    /// in. None before the first click and on desktops that do not let a program see the pointer
    /// (Wayland).
    std::optional<QRect> anchor() const;

 private:
    void start();
    void keepActivationToken(const QString& token);
    void hostChanged();
    void countTimeWithoutTray();
    void update();
    void clicked();
    ItemIcon icon() const;
    NotifierContent notifierContent(const TrayPresentation& presentation);
    const IconPixmaps& squares();
    IconPixmap rowWithText(const QString& text, int height);
    void tellIfNoTray();

    QDBusConnection bus_;
    Options options_;
    StatusItemActions actions_;
    std::optional<StatusItemContent> content_;
    std::vector<MenuEntry> entries_;
    std::optional<QRect> anchor_;
    // The icons drawn last, and of what: most changes are of the text alone.
    std::optional<ItemIcon> squaresOf_;
    IconPixmaps squares_;
    std::optional<ItemIcon> rowIconOf_;
    QImage rowIcon_;
    PictureFile pictureFile_;
    std::unique_ptr<DBusMenu> menu_;
    std::unique_ptr<StatusNotifierItem> notifier_;
    std::unique_ptr<NotifierRegistration> registration_;
    std::unique_ptr<EmbeddedTray> embedded_;
    bool started_ = false;
    /// Runs from when the last tray has gone.
    QTimer withoutTray_;
    /// Runs while a token of the compositor is kept.
    QTimer activationToken_;
    bool hasTold_ = false;
};

}  // namespace tarnwick::platform
