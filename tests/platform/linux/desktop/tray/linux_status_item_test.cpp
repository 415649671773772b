// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/tray/linux_status_item.h"

#include <QCoreApplication>
#include <QDBusConnectionInterface>
#include <QDBusObjectPath>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTimer>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

#include "tests/platform/linux/desktop/private_bus.h"
#include "tests/platform/linux/desktop/tray/scripted_host.h"

namespace tarnwick::platform {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::PrivateBus;
using testing::ScriptedHost;
using testing::waitUntil;

QImage paint(const std::string& symbol, Tint tint, bool dark, int pixels) {
    QImage image(pixels, pixels, QImage::Format_ARGB32);
    image.fill(symbol == "check" && tint == Tint::green ? (dark ? 0xFF00FF00 : 0xFF008000)
                                                        : (dark ? 0xFFFF0000 : 0xFF800000));
    return image;
}

class Item : public ::testing::Test {
 protected:
    Item() { make(itemBus_); }

    void make(const QDBusConnection& bus, int noTrayMilliseconds = 3'600'000,
              int tokenMilliseconds = 3'600'000, int samePressMilliseconds = 0) {
        item_.reset();
        LinuxStatusItem::Options options;
        options.painter = paint;
        options.notice = [this](std::string_view line) { notices_.emplace_back(line); };
        options.noTrayMilliseconds = noTrayMilliseconds;
        options.tokenMilliseconds = tokenMilliseconds;
        options.giveTokenBack = [this](const QByteArray& token) {
            givenBack_.push_back(token.toStdString());
        };
        options.samePressMilliseconds = samePressMilliseconds;
        options.isGnome = isGnome_;
        options.isUnderCompositor = isUnderCompositor_;
        options.findTextShade = [this](const std::string& program,
                                       std::function<void(bool)> found) {
            shadesAsked_.push_back(program);
            foundShade_ = std::move(found);
        };
        options.hostReadsMilliseconds = 0;
        options.programOf = [this](unsigned) { return program_; };
        options.retryDelays = {.first = 1, .longest = 4};
        options.runtimeFolder = runtime_.path().toStdString();
        item_ = std::make_unique<LinuxStatusItem>(bus, options);
        item_->setActions({.click =
                               [this] {
                                   ++clicks_;
                                   if (opensAWindow_) {
                                       // As the toolkit does when it activates one.
                                       qunsetenv("XDG_ACTIVATION_TOKEN");
                                   }
                               },
                           .toggle = [this] { ++toggles_; },
                           .refresh = [this] { ++refreshes_; },
                           .openPanel = [this] { ++openings_; },
                           .showSettings = [this] { ++settings_; },
                           .quit = [this] { ++quits_; }});
    }

    void show() { item_->setContent(content_); }

    /// Starts the host and waits until the item is in it.
    void beginHost() {
        const auto before = host_.registered.size();
        host_.begin();
        ASSERT_TRUE(waitUntil([&] { return host_.registered.size() > before; }));
        host_.properties();
        host_.signalNames.clear();
    }

    /// Shows an item that says soon that there is no tray, but gets into one before that; however
    /// slow the machine is. How soon that would be, in milliseconds.
    int showInTrayInTime() {
        int patience = 100;
        do {
            patience *= 2;
            notices_.clear();
            make(itemBus_, patience);
            show();
            EXPECT_TRUE(waitUntil([this] { return item_->inTray(); }));
        } while (!notices_.empty());
        return patience;
    }

    static void pass(int milliseconds) {
        bool later = false;
        QTimer::singleShot(milliseconds, [&] { later = true; });
        EXPECT_TRUE(waitUntil([&] { return later; }));
    }

    QStringList heardAfterShowing() {
        host_.signalNames.clear();
        show();
        host_.properties();
        return host_.signalNames;
    }

    IconPixmaps pixmaps() {
        return qdbus_cast<IconPixmaps>(host_.properties().value("IconPixmap"));
    }

    PrivateBus bus_;
    QTemporaryDir runtime_;
    QDBusConnection itemBus_ = bus_.connect();
    ScriptedHost host_{bus_.connect()};
    std::string program_ = "a host that nobody knows";
    bool isUnderCompositor_ = false;
    bool isGnome_ = false;
    bool opensAWindow_ = false;
    std::vector<std::string> givenBack_;
    std::vector<std::string> shadesAsked_;
    std::function<void(bool)> foundShade_;
    std::vector<std::string> notices_;
    int clicks_ = 0;
    int toggles_ = 0;
    int refreshes_ = 0;
    int openings_ = 0;
    int settings_ = 0;
    int quits_ = 0;
    StatusItemContent content_{.symbol = "check",
                               .tint = Tint::green,
                               .text = "CPU 12%",
                               .accessibilityLabel = "Tarnwick status: CPU 12%"};
    std::unique_ptr<LinuxStatusItem> item_;
};

TEST_F(Item, RegistersUnderItsOwnNameWithAWatcherThatIsThere) {
    host_.begin();
    show();
    ASSERT_TRUE(waitUntil([&] { return !host_.registered.isEmpty(); }));
    const QString name =
        QString("org.kde.StatusNotifierItem-%1-1").arg(QCoreApplication::applicationPid());
    EXPECT_THAT(host_.registered, ElementsAre(name));
    EXPECT_EQ(host_.properties().value("Title"), QVariant("Tarnwick status: CPU 12%"));
    EXPECT_TRUE(item_->inTray());
}

TEST_F(Item, HasItsContentBeforeTheHostLooksForTheFirstTime) {
    host_.begin();
    show();
    ASSERT_TRUE(waitUntil([&] { return !host_.registered.isEmpty(); }));
    EXPECT_EQ(pixmaps().size(), 6);
    EXPECT_EQ(pixmaps().first().bytes.first(4).toHex(), "ff008000");
}

TEST_F(Item, RegistersWhenTheWatcherComesLater) {
    show();
    // The bus has answered that there is no watcher.
    ASSERT_TRUE(waitUntil([&] {
        return itemBus_.interface()->registeredServiceNames().value().contains(
            QString("org.kde.StatusNotifierItem-%1-1").arg(QCoreApplication::applicationPid()));
    }));
    EXPECT_FALSE(item_->inTray());
    beginHost();
    EXPECT_EQ(host_.registered.size(), 1);
    EXPECT_TRUE(item_->inTray());
}

TEST_F(Item, RegistersAgainWithAWatcherThatWasRestarted) {
    show();
    beginHost();
    host_.end();
    ASSERT_TRUE(waitUntil([&] { return !item_->inTray(); }));
    EXPECT_FALSE(item_->performClick());
    beginHost();
    EXPECT_EQ(host_.registered.size(), 2);
    EXPECT_TRUE(item_->inTray());
}

TEST_F(Item, ShowsTheLatestContentToAHostThatComesBack) {
    show();
    beginHost();
    host_.end();
    ASSERT_TRUE(waitUntil([&] { return !item_->inTray(); }));
    content_.tint = Tint::red;
    content_.accessibilityLabel = "Tarnwick status: CPU 99%";
    EXPECT_THAT(host_.signalNames, IsEmpty());
    show();
    beginHost();
    EXPECT_EQ(host_.properties().value("Title"), QVariant("Tarnwick status: CPU 99%"));
    EXPECT_EQ(pixmaps().first().bytes.first(4).toHex(), "ff800000");
}

TEST_F(Item, FollowsAWatcherThatIsTakenOverByAnotherProgram) {
    show();
    beginHost();
    ScriptedHost other(bus_.connect());
    program_ = "waybar";
    host_.end();
    other.begin();
    ASSERT_TRUE(waitUntil([&] { return !other.registered.isEmpty(); }));
    EXPECT_EQ(qdbus_cast<IconPixmaps>(other.properties().value("IconPixmap")).size(), 1);
}

TEST_F(Item, TriesAgainForAsLongAsTheWatcherRefusesIt) {
    host_.refusals = 20;
    show();
    beginHost();
    EXPECT_EQ(host_.refusals, 0);
    EXPECT_EQ(host_.registered.size(), 1);
    EXPECT_TRUE(item_->inTray());
}

TEST_F(Item, IsInNoTrayWhileTheWatcherRefusesIt) {
    constexpr int kMany = 1'000'000;
    host_.refusals = kMany;
    make(itemBus_, 0);
    show();
    host_.begin();
    ASSERT_TRUE(waitUntil([&] { return host_.refusals < kMany - 2; }));
    EXPECT_FALSE(item_->inTray());
    EXPECT_FALSE(item_->performClick());
    EXPECT_TRUE(waitUntil([&] { return !notices_.empty(); }));
    host_.refusals = 0;
    EXPECT_TRUE(waitUntil([&] { return item_->inTray(); }));
    EXPECT_EQ(host_.registered.size(), 1);
}

TEST_F(Item, AsksAWatcherThatHasGoneNoMore) {
    host_.refusals = 3;
    show();
    host_.begin();
    ASSERT_TRUE(waitUntil([&] { return host_.refusals < 3; }));
    host_.end();
    host_.refusals = 0;
    beginHost();
    // What was due for the watcher before would have registered once more by now.
    pass(20);
    EXPECT_EQ(host_.registered.size(), 1);
}

TEST(RetryDelays, DoubleUpToALimit) {
    const NotifierRegistration::RetryDelays delays;
    const std::vector<int> expected = {300, 600, 1200, 2400, 4800, 9600, 10'000, 10'000};
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(delays.after(static_cast<int>(i) + 1), expected[i]) << i;
    }
    EXPECT_EQ(delays.after(1'000'000), 10'000);
}

TEST_F(Item, IsInNoTrayWhileTheWatcherHasNoHost) {
    host_.hasHost = false;
    show();
    beginHost();
    EXPECT_FALSE(item_->inTray());
    host_.announceHost(true);
    EXPECT_TRUE(waitUntil([&] { return item_->inTray(); }));
    host_.announceHost(false);
    EXPECT_TRUE(waitUntil([&] { return !item_->inTray(); }));
    EXPECT_EQ(host_.registered.size(), 1);
}

// As the watcher of sway's bar does, which has no host yet when it takes its name.
TEST_F(Item, IsInTheTrayOfAHostThatTheWatcherNames) {
    host_.hasHost = false;
    show();
    beginHost();
    EXPECT_FALSE(item_->inTray());
    host_.announceHost(true, {QString("org.freedesktop.StatusNotifierHost-1")});
    EXPECT_TRUE(waitUntil([&] { return item_->inTray(); }));
    host_.announceHost(false, {QString("org.freedesktop.StatusNotifierHost-1")});
    EXPECT_TRUE(waitUntil([&] { return !item_->inTray(); }));
}

TEST_F(Item, SendsNothingWhenShownTheSameContent) {
    show();
    beginHost();
    EXPECT_THAT(heardAfterShowing(), IsEmpty());
}

TEST_F(Item, SendsOnlyWhatChangedWhereTheTextIsInTheToolTip) {
    show();
    beginHost();
    // The text alone is not seen there; title and tool tip follow the label for screen readers.
    content_.text = std::nullopt;
    EXPECT_THAT(heardAfterShowing(), IsEmpty());
    content_.accessibilityLabel = "Tarnwick status: CPU 13%";
    EXPECT_THAT(heardAfterShowing(), ElementsAre("NewToolTip", "NewTitle"));
    content_.tint = Tint::red;
    EXPECT_THAT(heardAfterShowing(), ElementsAre("NewIcon"));
}

TEST_F(Item, SendsOneSignalWhereOneMakesTheHostFetchEverything) {
    program_ = "wrapper-2.0";
    show();
    beginHost();
    content_.accessibilityLabel = "Tarnwick status: CPU 13%";
    EXPECT_THAT(heardAfterShowing(), ElementsAre("NewToolTip"));
    content_.accessibilityLabel = "Tarnwick status: CPU 99%";
    content_.tint = Tint::red;
    EXPECT_THAT(heardAfterShowing(), ElementsAre("NewIcon"));
    EXPECT_EQ(host_.properties().value("Title"), QVariant("Tarnwick status: CPU 99%"));
}

TEST_F(Item, DrawsTheIconInTheOtherShadeWhenTheDesktopTurnsDark) {
    show();
    beginHost();
    item_->setDark(true);
    EXPECT_EQ(pixmaps().first().bytes.first(4).toHex(), "ff00ff00");
    EXPECT_THAT(host_.signalNames, ElementsAre("NewIcon"));
    host_.signalNames.clear();
    item_->setDark(true);
    host_.properties();
    EXPECT_THAT(host_.signalNames, IsEmpty());
}

TEST_F(Item, IsOneWidePictureWithTheTextWhereThatIsDrawnWhole) {
    program_ = "notification-area-applet";
    show();
    beginHost();
    ASSERT_EQ(pixmaps().size(), 1);
    const int width = pixmaps().first().width;
    EXPECT_EQ(pixmaps().first().height, 22);
    EXPECT_GT(width, 3 * 22);
    const QByteArray before = pixmaps().first().bytes;
    content_.text = "RAM 7%";
    EXPECT_THAT(heardAfterShowing(), ElementsAre("NewIcon"));
    EXPECT_EQ(pixmaps().first().width, width);
    EXPECT_NE(pixmaps().first().bytes, before);
    content_.text = std::nullopt;
    show();
    EXPECT_EQ(pixmaps().size(), 6);
}

TEST_F(Item, DrawsItsTextInTheShadeThatTheBarOfTheHostWants) {
    program_ = "waybar";
    content_.text = "CPU 12%";
    show();
    beginHost();
    ASSERT_THAT(shadesAsked_, ::testing::Contains("waybar"));
    const IconPixmaps dark = pixmaps();
    foundShade_(true);
    ASSERT_TRUE(waitUntil([&] { return pixmaps()[0].bytes != dark[0].bytes; }));
    const IconPixmaps light = pixmaps();
    ASSERT_EQ(light.size(), 1);
    // What the desktop prefers changes the icon, not the text.
    item_->setDark(true);
    EXPECT_NE(pixmaps()[0].bytes, light[0].bytes);
    foundShade_(false);
    item_->setDark(false);
    EXPECT_EQ(pixmaps()[0].bytes, dark[0].bytes);
}

TEST_F(Item, KeepsTheShadeOfItsTextForAHostThatIsStartedAgain) {
    program_ = "waybar";
    content_.text = "CPU 12%";
    show();
    beginHost();
    const IconPixmaps dark = pixmaps();
    foundShade_(true);
    ASSERT_TRUE(waitUntil([&] { return pixmaps()[0].bytes != dark[0].bytes; }));
    const IconPixmaps light = pixmaps();
    host_.end();
    ASSERT_TRUE(waitUntil([this] { return !item_->inTray(); }));
    const auto asked = shadesAsked_.size();
    beginHost();
    EXPECT_EQ(shadesAsked_.size(), asked + 1);
    EXPECT_EQ(pixmaps()[0].bytes, light[0].bytes);
    // The host, which is reading the item now, hears of no other picture.
    foundShade_(true);
    EXPECT_EQ(pixmaps()[0].bytes, light[0].bytes);
    EXPECT_THAT(host_.signalNames, ::testing::Not(::testing::Contains("NewIcon")));
}

TEST_F(Item, OutlivesNoAnswerAboutTheShadeOfItsText) {
    program_ = "waybar";
    show();
    beginHost();
    ASSERT_TRUE(foundShade_);
    item_.reset();
    foundShade_(true);
}

TEST_F(Item, NeedsAttentionWhileAMetricIsAboveItsHighThresholdWhereThatIsShown) {
    for (const char* program : {"kded6", "xfce4-panel"}) {
        program_ = program;
        const bool isMarked = program_ == "kded6";
        make(itemBus_);
        content_.tint = Tint::red;
        show();
        beginHost();
        EXPECT_EQ(host_.properties().value("Status").toString() == "NeedsAttention", isMarked);
        content_.tint = Tint::yellow;
        show();
        EXPECT_EQ(host_.properties().value("Status"), QVariant("Active"));
        host_.end();
    }
}

TEST_F(Item, KeepsItsWidthForEveryTextOfADisplayMode) {
    program_ = "waybar";
    show();
    beginHost();
    const int width = pixmaps().first().width;
    for (const char* text : {"Loading...", "CPU 0%", "Disk 100%", "W", ""}) {
        content_.text = text;
        show();
        ASSERT_EQ(pixmaps().size(), 1) << text;
        EXPECT_EQ(pixmaps().first().width, width) << text;
    }
}

TEST_F(Item, HasALabelOnlyWhileThereIsTextWhereLabelsShow) {
    program_ = "gnome-shell";
    show();
    beginHost();
    EXPECT_EQ(host_.properties().value("XAyatanaLabel"), QVariant("CPU 12%"));
    EXPECT_EQ(host_.properties().value("IconName"), QVariant(""));
    EXPECT_EQ(pixmaps().size(), 6);
    content_.text = "CPU 13%";
    EXPECT_THAT(heardAfterShowing(), ElementsAre("XAyatanaNewLabel"));
    content_.text = std::nullopt;
    show();
    EXPECT_FALSE(host_.properties().contains("XAyatanaLabel"));
}

TEST_F(Item, KnowsThatAHostHasNoRoomForItsText) {
    show();
    EXPECT_FALSE(item_->isIconOnly());
    beginHost();
    EXPECT_TRUE(item_->isIconOnly());
}

TEST_F(Item, KnowsThatAHostHasRoomForItsText) {
    program_ = "waybar";
    show();
    beginHost();
    EXPECT_FALSE(item_->isIconOnly());
}

TEST_F(Item, WritesTheIconAsAFileWhereNoPixmapsAreDrawn) {
    program_ = "ayatana-indicator-application-service";
    show();
    beginHost();
    const QString green = host_.properties().value("IconName").toString();
    ASSERT_TRUE(QFileInfo(green).isFile()) << green.toStdString();
    EXPECT_TRUE(green.startsWith(runtime_.path()));
    EXPECT_EQ(QImage(green).pixelColor(5, 5), QColor(0, 0x80, 0));
    content_.tint = Tint::red;
    EXPECT_THAT(heardAfterShowing(), ElementsAre("NewIcon"));
    const QString red = host_.properties().value("IconName").toString();
    EXPECT_NE(red, green);
    EXPECT_EQ(QImage(red).pixelColor(5, 5), QColor(0x80, 0, 0));
    item_.reset();
    EXPECT_THAT(QDir(runtime_.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
                IsEmpty());
}

TEST_F(Item, KeepsThePixmapsWhenTheFileCannotBeWritten) {
    program_ = "ayatana-indicator-application-service";
    runtime_.remove();
    QFile blocker(runtime_.path());
    ASSERT_TRUE(blocker.open(QIODevice::WriteOnly));
    show();
    beginHost();
    EXPECT_EQ(host_.properties().value("IconName"), QVariant(""));
    EXPECT_EQ(pixmaps().size(), 6);
    blocker.remove();
}

TEST_F(Item, ReportsClicksOfEachButton) {
    show();
    beginHost();
    host_.callItem("Activate", {0, 0});
    EXPECT_EQ(clicks_, 1);
    host_.callItem("SecondaryActivate", {0, 0});
    EXPECT_EQ(refreshes_, 1);
    EXPECT_EQ(clicks_, 1);
}

TEST_F(Item, TakesTwoReportsOfOnePressForOneClick) {
    make(itemBus_, 3'600'000, 3'600'000, 3'600'000);
    show();
    beginHost();
    host_.callItem("Activate", {0, 0});
    host_.callItem("Activate", {0, 0});
    EXPECT_EQ(clicks_, 1);
}

TEST_F(Item, TakesTwoPressesForTwoClicks) {
    show();
    beginHost();
    host_.callItem("Activate", {0, 0});
    host_.callItem("Activate", {0, 0});
    EXPECT_EQ(clicks_, 2);
}

TEST_F(Item, KeepsATokenOfTheCompositorForTheToolkit) {
    show();
    beginHost();
    host_.callItem("ProvideXdgActivationToken", {"a token"});
    EXPECT_EQ(qgetenv("XDG_ACTIVATION_TOKEN"), "a token");
    host_.callItem("ProvideXdgActivationToken", {"another"});
    EXPECT_EQ(qgetenv("XDG_ACTIVATION_TOKEN"), "another");
    qunsetenv("XDG_ACTIVATION_TOKEN");
}

TEST_F(Item, PassesOverWhatIsTooLongForATokenOfACompositor) {
    show();
    beginHost();
    const auto give = [this](int length) {
        host_.callItem("ProvideXdgActivationToken", {QString(length, 'x')});
        const auto kept = qgetenv("XDG_ACTIVATION_TOKEN").size();
        qunsetenv("XDG_ACTIVATION_TOKEN");
        return kept;
    };
    EXPECT_EQ(give(200), 200);
    EXPECT_EQ(give(5'000'000), 0);
}

TEST_F(Item, DropsATokenThatNoWindowCameFor) {
    make(itemBus_, 3'600'000, 1);
    show();
    beginHost();
    host_.callItem("ProvideXdgActivationToken", {"a token"});
    EXPECT_TRUE(waitUntil([] { return qEnvironmentVariableIsEmpty("XDG_ACTIVATION_TOKEN"); }));
    EXPECT_THAT(givenBack_, ElementsAre("a token"));
}

TEST_F(Item, GivesATokenBackAtOnceThatAPressHasNoUseFor) {
    show();
    beginHost();
    host_.callItem("ProvideXdgActivationToken", {"of a middle click"});
    host_.callItem("SecondaryActivate", {0, 0});
    EXPECT_THAT(givenBack_, ElementsAre("of a middle click"));
    EXPECT_TRUE(qEnvironmentVariableIsEmpty("XDG_ACTIVATION_TOKEN"));
    host_.callItem("ProvideXdgActivationToken", {"of a click that closes"});
    host_.callItem("Activate", {0, 0});
    EXPECT_THAT(givenBack_, ElementsAre("of a middle click", "of a click that closes"));
}

TEST_F(Item, GivesNoTokenBackThatAWindowHasUsed) {
    opensAWindow_ = true;
    show();
    beginHost();
    host_.callItem("ProvideXdgActivationToken", {"a token"});
    host_.callItem("Activate", {0, 0});
    host_.callItem("SecondaryActivate", {0, 0});
    EXPECT_THAT(givenBack_, ElementsAre());
}

TEST_F(Item, HasAMenuThatOpensThePanelShowsTheSettingsAndQuits) {
    show();
    beginHost();
    const QString path = qvariant_cast<QDBusObjectPath>(host_.properties().value("Menu")).path();
    const auto call = [&](const QString& member, const QVariantList& arguments) {
        return host_.call("com.canonical.dbusmenu", member, arguments, path);
    };
    const QDBusMessage layout = call("GetLayout", {0, -1, QStringList()});
    QStringList entries;
    for (const QDBusVariant& each : qdbus_cast<MenuNode>(layout.arguments().value(1)).children) {
        const MenuNode node = qdbus_cast<MenuNode>(each.variant());
        entries.append(node.properties.value("label").toString() +
                       (node.properties.value("enabled").toBool() ? "+" : "-"));
    }
    EXPECT_THAT(entries, ElementsAre("Open Panel+", "Settings+", "-", "Quit+"));
    const auto choose = [&](int id) {
        call("Event", {id, QString("clicked"), QVariant::fromValue(QDBusVariant("")), 0U});
    };
    choose(1);
    EXPECT_TRUE(waitUntil([&] { return openings_ == 1; }));
    choose(2);
    EXPECT_TRUE(waitUntil([&] { return settings_ == 1; }));
    choose(3);
    choose(4);
    EXPECT_TRUE(waitUntil([&] { return quits_ == 1; }));
    EXPECT_EQ(clicks_, 0);
    EXPECT_EQ(openings_ + settings_, 2);
}

TEST_F(Item, ClicksItselfForTheUserOnlyWhileItIsInATray) {
    EXPECT_FALSE(item_->performClick());
    show();
    EXPECT_FALSE(item_->performClick());
    beginHost();
    EXPECT_TRUE(item_->performClick());
    EXPECT_EQ(toggles_, 1);
    EXPECT_EQ(clicks_, 0);
}

TEST_F(Item, OpensAndClosesThePanelByShortcutWithoutATray) {
    show();
    item_->toggleWithoutTray();
    EXPECT_EQ(toggles_, 1);
}

TEST_F(Item, HasNoAnchorWhereThePointerCannotBeSeen) {
    show();
    beginHost();
    host_.callItem("Activate", {300, 4});
    EXPECT_EQ(item_->anchor(), std::nullopt);
}

TEST_F(Item, IsWhereTheHostReportsUnderACompositor) {
    isUnderCompositor_ = true;
    make(itemBus_);
    show();
    beginHost();
    EXPECT_EQ(item_->anchor(), std::nullopt);
    host_.callItem("Activate", {300, 7});
    EXPECT_EQ(item_->anchor(), QRect(300, 7, 1, 1));
    // A menu tells no place.
    host_.call("com.canonical.dbusmenu", "AboutToShow", {0}, "/StatusNotifierMenu");
    EXPECT_EQ(item_->anchor(), QRect(300, 7, 1, 1));
    host_.callItem("Activate", {300, 100000});
    EXPECT_EQ(item_->anchor(), std::nullopt);
    EXPECT_EQ(clicks_, 2);
}

TEST_F(Item, IsUsuallyAtTheBottomWherePlasmaShowsIt) {
    show();
    EXPECT_FALSE(item_->isUsuallyAtTheBottom());
    program_ = "kded6";
    beginHost();
    EXPECT_TRUE(item_->isUsuallyAtTheBottom());
}

TEST_F(Item, TellsTheUserOnceWhenThereIsNoTray) {
    make(itemBus_, 0);
    show();
    EXPECT_TRUE(waitUntil([&] { return !notices_.empty(); }));
    content_.text = "RAM 1%";
    show();
    beginHost();
    EXPECT_THAT(notices_, ElementsAre("no tray was found; start Tarnwick again to open its panel"));
}

TEST_F(Item, HasANoticeForTheSettingsWhileThereIsNoTray) {
    make(itemBus_, 1);
    show();
    EXPECT_TRUE(waitUntil([this] { return !item_->notice().text->empty(); }));
    EXPECT_THAT(*item_->notice().text, ::testing::HasSubstr("start Tarnwick again"));
    EXPECT_THAT(*item_->notice().text, ::testing::Not(::testing::HasSubstr("AppIndicator")));
    host_.begin();
    EXPECT_TRUE(waitUntil([this] { return item_->notice().text->empty(); }));
    // The line on standard error comes once, the notice whenever it is true.
    host_.end();
    EXPECT_TRUE(waitUntil([this] { return !item_->notice().text->empty(); }));
    EXPECT_EQ(notices_.size(), 1U);
}

TEST_F(Item, NamesTheExtensionThatShowsItOnGnome) {
    isGnome_ = true;
    make(itemBus_, 1);
    show();
    EXPECT_TRUE(waitUntil([this] { return !item_->notice().text->empty(); }));
    EXPECT_THAT(*item_->notice().text, ::testing::HasSubstr("AppIndicator and KStatusNotifierItem "
                                                            "Support"));
}

TEST_F(Item, SaysNothingOfTheKindInATray) {
    host_.begin();
    pass(2 * showInTrayInTime());
    EXPECT_THAT(notices_, IsEmpty());
}

TEST_F(Item, CountsTheTimeWithoutATrayFromWhenTheHostWent) {
    host_.begin();
    const int patience = showInTrayInTime();
    pass(patience / 2);
    QElapsedTimer gone;
    gone.start();
    host_.end();
    EXPECT_TRUE(waitUntil([&] { return !notices_.empty(); }));
    // The toolkit's timer may be a twentieth early.
    EXPECT_GE(gone.elapsed(), patience * 9 / 10);
    beginHost();
    host_.end();
    pass(2 * patience);
    EXPECT_EQ(notices_.size(), 1U);
}

TEST_F(Item, RunsWithoutABus) {
    make(QDBusConnection("there is none"), 0);
    show();
    item_->setDark(true);
    EXPECT_FALSE(item_->performClick());
    EXPECT_TRUE(waitUntil([&] { return notices_.size() == 1; }));
}

TEST_F(Item, OutlivesItsBus) {
    show();
    beginHost();
    bus_.end();
    EXPECT_TRUE(waitUntil([&] { return !item_->inTray(); }));
    content_.text = "RAM 1%";
    content_.tint = Tint::red;
    show();
    EXPECT_FALSE(item_->performClick());
}

TEST_F(Item, GivesItsNameBackWhenItEnds) {
    show();
    beginHost();
    const QString name = host_.registered.last();
    item_.reset();
    EXPECT_TRUE(waitUntil([&] { return !itemBus_.interface()->isServiceRegistered(name); }));
}

TEST(ProgramOfProcess, IsTheFileNameOfTheExecutable) {
    EXPECT_EQ(programOfProcess(static_cast<unsigned>(QCoreApplication::applicationPid())),
              "tests_platform_linux_desktop");
    EXPECT_EQ(programOfProcess(0), "");
}

}  // namespace
}  // namespace tarnwick::platform
