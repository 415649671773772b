// SPDX-License-Identifier: MIT
// The status item on Linux: on the bus where a StatusNotifier host draws it, else in the tray of
// the older kind.
#pragma once

#include <QDBusConnection>
#include <QElapsedTimer>
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
#include "platform/dispatch.h"
#include "platform/linux/desktop/tray/dbus_menu.h"
#include "platform/linux/desktop/tray/embedded_tray.h"
#include "platform/linux/desktop/tray/item_picture.h"
#include "platform/linux/desktop/tray/notifier_registration.h"
#include "platform/linux/desktop/tray/status_notifier_item.h"
#include "platform/linux/desktop/tray/tray_presentation.h"
#include "platform/status_item_notice.h"

namespace tarnwick::platform {

/// Follows hosts and trays as they come and go. Main thread; never waits for the bus.
class LinuxStatusItem final : public QObject, public StatusItem {
    Q_OBJECT

 public:
    struct Options {
        /// Draws the icon; required.
        IconPainter painter;
        /// Whether the desktop prefers dark.
        bool dark = false;
        /// Prints one line for the user.
        std::function<void(std::string_view)> notice;
        /// Milliseconds without any tray after which the user is told. It happens once.
        int noTrayMilliseconds = 5000;
        /// Milliseconds for which a token of the compositor is kept for the window that a press
        /// opens.
        int tokenMilliseconds = 2000;
        /// Tells the compositor that no window comes for a token.
        std::function<void(const QByteArray& token)> giveTokenBack{};
        /// Milliseconds from the end of a press on the bus in which another one counts as the same:
        /// waybar reports the second press of a quick pair as a press and as a double click.
        int samePressMilliseconds = 20;
        /// A compositor has the pointer, also if the program talks to an X server beside it: what
        /// that server tells of the pointer is stale.
        bool isUnderCompositor = false;
        /// The desktop is GNOME, which has a tray only as an extension.
        bool isGnome = false;
        /// Returns the name of a process's program.
        NotifierRegistration::ProgramOf programOf = programOfProcess;
        /// How soon a host that refuses the item is asked again.
        NotifierRegistration::RetryDelays retryDelays{};
        /// Finds out whether the host `program` draws on a bar that wants light text, and calls
        /// `found` on the main thread, later and at most once: not at all if it cannot tell.
        std::function<void(const std::string& program, std::function<void(bool isLight)> found)>
            findTextShade{};
        /// Milliseconds after which a host has read the item that it has just taken.
        int hostReadsMilliseconds = 1000;
        /// Folder for the picture file that some hosts want in place of pixmaps.
        std::string runtimeFolder;
    };

    /// Options of a real session: the notice goes to standard error, the folder is the runtime
    /// folder. Requires: `dispatch` outlives the background work.
    static Options sessionOptions(IconPainter painter, bool dark, Dispatch& dispatch);

    /// `bus` may be unconnected: then only a tray of the older kind is looked for.
    LinuxStatusItem(QDBusConnection bus, Options options);
    ~LinuxStatusItem() override;

    void setContent(const StatusItemContent& content) override;
    void setActions(StatusItemActions actions) override;
    bool inTray() const override;
    bool performClick() override;
    /// Runs `toggle`: many desktops have no tray.
    void toggleWithoutTray() override;

    /// Whether a tray shows the item that has no room for its text: the text is in the tool tip
    /// there.
    bool isIconOnly() const;

    /// Draws the icon in the shade for the desktop's new preference.
    void setDark(bool dark);

    /// The item's known place on the screen, for a panel beside it: the icon's place in the older
    /// kind of tray, else the place of the last click, as high as its bar. Absent before the first
    /// click. Under a compositor a program does not see the pointer: there it is the point that the
    /// host reported with the last click, absent if it reported none.
    std::optional<QRect> anchor() const;
    /// Says how to get at the program while no tray shows the item.
    StatusItemNotice& notice() { return notice_; }

    /// Whether the tray is usually at the bottom of the screen, for a panel while anchor() is
    /// absent.
    bool isUsuallyAtTheBottom() const;

    /// Keeps the compositor's permission to come to the front for the next window that is opened;
    /// an empty one changes nothing.
    void keepActivationToken(const QString& token);
    /// For a window that is opened later; empty where there is none. keepActivationToken() takes it
    /// again.
    QString takeActivationToken();
    /// Gives it back to the compositor if no window has used it.
    void giveActivationTokenBack();

 private:
    void start();
    void hostChanged();
    void countTimeWithoutTray();
    void update();
    /// A host on the bus reports a press.
    void activated(const QPoint& reported);
    void clicked();
    void keepPlaceUnderPointer();
    ItemIcon icon() const;
    NotifierContent notifierContent(const TrayPresentation& presentation);
    const IconPixmaps& squares();
    IconPixmap rowWithText(const QString& text, int height);
    void tellIfNoTray();
    void askForTextShade();

    QDBusConnection bus_;
    Options options_;
    StatusItemActions actions_;
    StatusItemNotice notice_;
    std::optional<StatusItemContent> content_;
    std::vector<MenuEntry> entries_;
    std::optional<QRect> anchor_;
    /// Runs from the end of the last press that a host on the bus reported.
    QElapsedTimer sinceActivation_;
    // The last drawn icons and what they show: kept, because most changes affect only the text.
    std::optional<ItemIcon> squaresOf_;
    IconPixmaps squares_;
    std::optional<ItemIcon> rowIconOf_;
    QImage rowIcon_;
    PictureFile pictureFile_;
    std::unique_ptr<DBusMenu> menu_;
    std::unique_ptr<StatusNotifierItem> notifier_;
    std::unique_ptr<NotifierRegistration> registration_;
    std::unique_ptr<EmbeddedTray> embedded_;
    /// The host whose bar was last asked about, and whether that bar wants light text.
    std::string shadedHost_;
    /// The host at the last look; empty if there was none.
    std::string seenHost_;
    std::optional<bool> hasLightText_;
    /// Lives as long as the item, which an answer may come after.
    std::shared_ptr<LinuxStatusItem*> self_ = std::make_shared<LinuxStatusItem*>(this);
    bool started_ = false;
    /// Runs from when the last tray has gone.
    QTimer withoutTray_;
    /// Runs while a token of the compositor is kept.
    QTimer activationToken_;
    bool hasTold_ = false;
};

}  // namespace tarnwick::platform
