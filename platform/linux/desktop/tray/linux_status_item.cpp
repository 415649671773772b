// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/tray/linux_status_item.h"

#include <QGuiApplication>
#include <QTimer>
#include <cstdlib>
#include <utility>

#include "platform/linux/desktop/keyboard/session_keyboard.h"
#include "platform/linux/desktop/tray/pointer_place.h"
#include "platform/linux/desktop/tray/reported_place.h"
#include "platform/linux/desktop/tray/waybar_style.h"
#include "platform/linux/events/standard_error.h"
#include "platform/qt/wayland.h"

namespace tarnwick::platform {
namespace {

constexpr auto kMenuPath = "/StatusNotifierMenu";
constexpr auto kActivationToken = "XDG_ACTIVATION_TOKEN";
/// Longest accepted token; real ones have a few dozen letters. The C library never frees old values
/// of the environment, and a very long value prevents programs from starting.
constexpr qsizetype kLongestToken = 1024;

constexpr auto kNoTray =
    "No tray shows Tarnwick's icon. To open the panel, start Tarnwick again or press the shortcut.";
constexpr auto kNoTrayOnGnome =
    " GNOME shows the icon with the extension AppIndicator and KStatusNotifierItem Support.";

bool onX11() {
    return QGuiApplication::platformName() == "xcb";
}

void run(const std::function<void()>& action) {
    if (action) {
        action();
    }
}

}  // namespace

LinuxStatusItem::Options LinuxStatusItem::sessionOptions(IconPainter painter, bool dark,
                                                         Dispatch& dispatch) {
    Options options;
    options.painter = std::move(painter);
    options.dark = dark;
    options.notice = platform::notice;
    options.findTextShade = [&dispatch](const std::string& program,
                                        std::function<void(bool)> found) {
        if (program == "waybar") {
            // Asked here: the main thread changes variables.
            auto files = waybarStyleFiles([](const char* name) { return std::getenv(name); });
            dispatch.detached([&dispatch, files = std::move(files), found = std::move(found)] {
                if (const auto isLight = wantsLightText(styleSheet(files))) {
                    dispatch.async([found, isLight = *isLight] { found(isLight); });
                }
            });
        }
    };
    options.isGnome = qEnvironmentVariable("XDG_CURRENT_DESKTOP").contains("GNOME");
    options.isUnderCompositor = isUnderCompositor();
    options.giveTokenBack = [](const QByteArray& token) {
        wayland::endStartup(token.toStdString());
    };
    options.runtimeFolder = qEnvironmentVariable("XDG_RUNTIME_DIR").toStdString();
    return options;
}

LinuxStatusItem::LinuxStatusItem(QDBusConnection bus, Options options)
    : bus_(std::move(bus)), options_(std::move(options)), pictureFile_(options_.runtimeFolder) {
    entries_ = {
        {.label = "Open Panel", .chosen = [this] { run(actions_.openPanel); }},
        {.label = "Settings", .chosen = [this] { run(actions_.showSettings); }},
        {.label = {}, .chosen = nullptr},
        {.label = "Quit", .chosen = [this] { run(actions_.quit); }},
    };
}

LinuxStatusItem::~LinuxStatusItem() = default;

void LinuxStatusItem::setActions(StatusItemActions actions) {
    actions_ = std::move(actions);
}

void LinuxStatusItem::setContent(const StatusItemContent& content) {
    if (content_ == content) {
        return;
    }
    content_ = content;
    if (!started_) {
        started_ = true;
        start();
    }
    update();
}

void LinuxStatusItem::setDark(bool dark) {
    if (options_.dark != dark) {
        options_.dark = dark;
        update();
    }
}

bool LinuxStatusItem::performClick() {
    if (!inTray()) {
        return false;
    }
    run(actions_.toggle);
    return true;
}

void LinuxStatusItem::toggleWithoutTray() {
    run(actions_.toggle);
}

bool LinuxStatusItem::inTray() const {
    if (registration_ && registration_->state() == NotifierRegistration::State::present) {
        return true;
    }
    return embedded_ && embedded_->inTray();
}

bool LinuxStatusItem::isIconOnly() const {
    if (registration_ && registration_->state() == NotifierRegistration::State::present) {
        return trayPresentation(registration_->program()).text == TextPlace::toolTip;
    }
    return inTray();
}

void LinuxStatusItem::start() {
    if (bus_.isConnected()) {
        // Read now, because the pointer is on the item; later it will be on the chosen entry.
        menu_ = std::make_unique<DBusMenu>(bus_, kMenuPath, entries_,
                                           [this] { keepPlaceUnderPointer(); });
        notifier_ = std::make_unique<StatusNotifierItem>(
            bus_, kMenuPath,
            NotifierActions{
                .activate = [this](const QPoint& place) { activated(place); },
                .secondaryActivate =
                    [this] {
                        run(actions_.refresh);
                        giveActivationTokenBack();
                    },
                .activationToken = [this](const QString& token) { keepActivationToken(token); }});
        activationToken_.setSingleShot(true);
        activationToken_.setInterval(options_.tokenMilliseconds);
        connect(&activationToken_, &QTimer::timeout, this,
                &LinuxStatusItem::giveActivationTokenBack);
    }
    withoutTray_.setSingleShot(true);
    withoutTray_.setInterval(options_.noTrayMilliseconds);
    connect(&withoutTray_, &QTimer::timeout, this, [this] { tellIfNoTray(); });
    registration_ =
        std::make_unique<NotifierRegistration>(bus_, options_.programOf, options_.retryDelays);
    registration_->start([this] { hostChanged(); });
    countTimeWithoutTray();
}

void LinuxStatusItem::keepActivationToken(const QString& token) {
    if (token.isEmpty() || token.size() > kLongestToken) {
        return;
    }
    // The toolkit reads the token from this variable when it next activates a window, and removes
    // it. A token that no window has used must not serve another press. The timer is for a token
    // that no press has followed.
    qputenv(kActivationToken, token.toUtf8());
    activationToken_.start();
}

QString LinuxStatusItem::takeActivationToken() {
    activationToken_.stop();
    const QString token = qEnvironmentVariable(kActivationToken);
    qunsetenv(kActivationToken);
    return token;
}

void LinuxStatusItem::giveActivationTokenBack() {
    const QByteArray token = takeActivationToken().toUtf8();
    if (!token.isEmpty() && options_.giveTokenBack) {
        options_.giveTokenBack(token);
    }
}

void LinuxStatusItem::hostChanged() {
    anchor_.reset();
    if (registration_->state() != NotifierRegistration::State::absent) {
        embedded_.reset();
    } else if (!embedded_ && onX11()) {
        embedded_ = std::make_unique<EmbeddedTray>(
            entries_, [this] { clicked(); }, [this] { run(actions_.refresh); },
            [this] { countTimeWithoutTray(); });
    }
    askForTextShade();
    update();
    countTimeWithoutTray();
}

void LinuxStatusItem::askForTextShade() {
    const std::string host = registration_->program();
    if (host == std::exchange(seenHost_, host) || host.empty()) {
        return;
    }
    // A host that was started again looks as before, as a rule.
    if (host != std::exchange(shadedHost_, host)) {
        hasLightText_.reset();
    }
    if (!options_.findTextShade) {
        return;
    }
    options_.findTextShade(host, [weak = std::weak_ptr(self_), host](bool isLight) {
        const auto self = weak.lock();
        if (self && (*self)->shadedHost_ == host && (*self)->hasLightText_ != isLight) {
            (*self)->hasLightText_ = isLight;
            // waybar may show nothing at all if the icon changes while it reads the item.
            QTimer::singleShot((*self)->options_.hostReadsMilliseconds, *self,
                               [item = *self] { item->update(); });
        }
    });
}

void LinuxStatusItem::countTimeWithoutTray() {
    // A tray of the older kind may be about to go: what counts is whether it is there in the end.
    if (inTray() && !notice_.text->empty()) {
        notice_.text.set({});
    }
    if (registration_->state() == NotifierRegistration::State::present) {
        withoutTray_.stop();
    } else if (!withoutTray_.isActive()) {
        withoutTray_.start();
    }
}

void LinuxStatusItem::update() {
    if (!content_) {
        return;
    }
    if (embedded_) {
        embedded_->setIcon(options_.painter, icon());
        embedded_->setText(QString::fromStdString(content_->accessibilityLabel));
    }
    // Without a host the content is not shown. It is set when a host appears.
    const NotifierRegistration::State state = registration_->state();
    if (state == NotifierRegistration::State::registering ||
        state == NotifierRegistration::State::present) {
        const TrayPresentation presentation = trayPresentation(registration_->program());
        notifier_->setContent(notifierContent(presentation), presentation.fetches);
    }
}

std::optional<QRect> LinuxStatusItem::anchor() const {
    const std::optional<QRect> embedded = embedded_ ? embedded_->place() : std::nullopt;
    return embedded ? embedded : anchor_;
}

bool LinuxStatusItem::isUsuallyAtTheBottom() const {
    return registration_ && platform::isUsuallyAtTheBottom(registration_->program());
}

void LinuxStatusItem::activated(const QPoint& reported) {
    if (sinceActivation_.isValid() && sinceActivation_.elapsed() < options_.samePressMilliseconds) {
        return;
    }
    if (options_.isUnderCompositor) {
        const auto point = reportedPoint(reported, registration_->program(), reportedScreens());
        anchor_ = point ? std::optional(QRect(*point, QSize(1, 1))) : std::nullopt;
    }
    clicked();
    giveActivationTokenBack();
    // From here on, because opening the panel takes a while.
    sinceActivation_.start();
}

void LinuxStatusItem::clicked() {
    keepPlaceUnderPointer();
    run(actions_.click);
}

void LinuxStatusItem::keepPlaceUnderPointer() {
    // Better than the position in the message, because hosts disagree about its origin.
    if (!options_.isUnderCompositor) {
        anchor_ = placeUnderPointer();
    }
}

ItemIcon LinuxStatusItem::icon() const {
    return {.symbol = content_->symbol, .tint = content_->tint, .dark = options_.dark};
}

const IconPixmaps& LinuxStatusItem::squares() {
    if (squaresOf_ != icon()) {
        squaresOf_ = icon();
        squares_ = squarePixmaps(options_.painter, *squaresOf_);
    }
    return squares_;
}

IconPixmap LinuxStatusItem::rowWithText(const QString& text, int height) {
    if (rowIconOf_ != icon() || rowIcon_.height() != wideIconSize(height)) {
        rowIconOf_ = icon();
        rowIcon_ = squarePicture(options_.painter, *rowIconOf_, wideIconSize(height));
    }
    return toPixmap(widePicture(rowIcon_, text, hasLightText_.value_or(options_.dark), height));
}

NotifierContent LinuxStatusItem::notifierContent(const TrayPresentation& presentation) {
    // Only the presence of a text matters, not its content, so that the width depends on the
    // display mode alone.
    const bool hasText = content_->text.has_value();
    const QString text = QString::fromStdString(content_->text.value_or(std::string()));
    NotifierContent content;
    content.text = QString::fromStdString(content_->accessibilityLabel);
    if (hasText && presentation.text == TextPlace::picture) {
        content.icon = {rowWithText(text, presentation.pictureHeight)};
    } else {
        content.icon = squares();
    }
    if (presentation.iconFromFile) {
        content.iconName = pictureFile_.path(options_.painter, icon());
    }
    if (hasText && presentation.text == TextPlace::label) {
        content.label = text;
    }
    content.needsAttention = presentation.marksAttention && content_->tint == Tint::red;
    return content;
}

void LinuxStatusItem::tellIfNoTray() {
    if (inTray()) {
        return;
    }
    notice_.text.set(std::string(kNoTray) + (options_.isGnome ? kNoTrayOnGnome : ""));
    if (options_.notice && !std::exchange(hasTold_, true)) {
        options_.notice("no tray was found; start Tarnwick again to open its panel");
    }
}

}  // namespace tarnwick::platform
