// SPDX-License-Identifier: MIT
#include "ui/qt/titled_window.h"

#include <QApplication>
#include <QCloseEvent>
#include <QCursor>
#include <QScreen>
#include <utility>

#include "platform/qt/x11.h"

namespace tarnwick::qt {

namespace {

Qt::WindowFlags windowKind(const platform::WindowOptions& options) {
    Qt::WindowFlags flags = Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                            Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint;
    flags.setFlag(Qt::WindowMinimizeButtonHint, options.isMiniaturizable);
    flags.setFlag(Qt::WindowMaximizeButtonHint, options.isResizable);
    return flags;
}

/// The screen where the user is probably looking.
QScreen* currentScreen() {
    QScreen* screen = QGuiApplication::screenAt(QCursor::pos());
    return screen != nullptr ? screen : QGuiApplication::primaryScreen();
}

}  // namespace

/// A main window of the toolkit, because assistive technology expects the name and the role of one
/// for a window with a title.
class TitledWindow::Frame final : public QMainWindow {
 public:
    Frame(TitledWindow& owner, Qt::WindowFlags flags, std::function<void()> gone)
        : QMainWindow(nullptr, flags), owner_(&owner), gone_(std::move(gone)) {}
    Frame(const Frame&) = delete;
    Frame& operator=(const Frame&) = delete;
    ~Frame() override {
        if (gone_) {
            QMetaObject::invokeMethod(QCoreApplication::instance(), std::move(gone_),
                                      Qt::QueuedConnection);
        }
    }

    /// The frame has no owner from now on. Deletes it; later, if it is closing now.
    void letGo() {
        owner_ = nullptr;
        if (isClosing_) {
            deleteLater();
        } else {
            delete this;
        }
    }

 protected:
    void closeEvent(QCloseEvent* event) override {
        event->accept();
        isClosing_ = true;
        if (owner_ != nullptr && owner_->delegate_ != nullptr) {
            owner_->delegate_->windowWillClose();
        }
        isClosing_ = owner_ == nullptr;
    }

 private:
    TitledWindow* owner_;
    std::function<void()> gone_;
    bool isClosing_ = false;
};

TitledWindow::TitledWindow(const platform::WindowOptions& options, std::function<void()> gone,
                           const QIcon& icon)
    : frame_(new Frame(*this, windowKind(options), std::move(gone))) {
    frame_->setWindowIcon(icon);
    if (options.isResizable) {
        frame_->resize(options.width, options.height);
    } else {
        frame_->setFixedSize(options.width, options.height);
    }
}

TitledWindow::~TitledWindow() {
    setContentView(nullptr);
    frame_->letGo();
}

void TitledWindow::setTitle(const std::string& title) {
    frame_->setWindowTitle(QString::fromStdString(title));
}

void TitledWindow::setContentView(std::unique_ptr<platform::View> view) {
    frame_->takeCentralWidget();
    view_.reset();
    if (view) {
        auto& widgets = dynamic_cast<WidgetView&>(*view);
        view.release();
        view_.reset(&widgets);
        frame_->setCentralWidget(view_->widget());
    }
}

void TitledWindow::center() {
    const QRect screen = currentScreen()->availableGeometry();
    // Centres the content; the size of the title bar is not known yet.
    frame_->setGeometry(QRect(screen.center() - frame_->rect().center(), frame_->size()));
}

void TitledWindow::makeKeyAndOrderFront() {
    frame_->setWindowState(frame_->windowState() & ~Qt::WindowMinimized);
    frame_->show();
    frame_->raise();
    frame_->activateWindow();
}

std::unique_ptr<platform::Window> TitledWindows::makeWindow(
    const platform::WindowOptions& options) {
    return std::make_unique<TitledWindow>(options, gone_, icon_ ? icon_() : QIcon());
}

void TitledWindows::activateIgnoringOtherApps() {
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (widget->isVisible() && qobject_cast<QMainWindow*>(widget) != nullptr) {
            widget->activateWindow();
            x11::activate(static_cast<xcb_window_t>(widget->winId()));
        }
    }
}

}  // namespace tarnwick::qt
