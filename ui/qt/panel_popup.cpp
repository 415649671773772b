// SPDX-License-Identifier: MIT
#include "ui/qt/panel_popup.h"

#include <QBitmap>
#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScreen>
#include <QScrollBar>
#include <QTimer>
#include <QWindow>
#include <algorithm>
#include <utility>

#include "platform/qt/x11.h"
#include "ui/qt/button_widget.h"
#include "ui/qt/grid.h"
#include "ui/qt/panel_placement.h"
#include "ui/qt/shadow.h"

namespace tarnwick::qt {

namespace {

// Each wait is twice as long as the one before. All together take some seconds, longer than a user
// keeps a button pressed by mistake.
constexpr int kInputAttempts = 8;
constexpr int kFirstInputDelay = 30;

/// Under a compositor a pop-up must belong to a window of the program, and the panel has none.
/// There it is a window of its own, which hides when another one becomes active.
Qt::WindowFlags windowKind(PanelSurface surface) {
    return (surface == PanelSurface::popUp ? Qt::Popup : Qt::Window) | Qt::FramelessWindowHint |
           Qt::NoDropShadowWindowHint;
}

const QScreen* screenOf(const QRect& anchor) {
    const QScreen* screen = QGuiApplication::screenAt(anchor.center());
    return screen != nullptr ? screen : QGuiApplication::primaryScreen();
}

/// The shape of the panel for a window that cannot be translucent.
QBitmap roundedMask(const QSize& size) {
    QBitmap mask(size);
    mask.clear();
    QPainter painter(&mask);
    painter.setBrush(Qt::color1);
    painter.setPen(Qt::NoPen);
    painter.drawRoundedRect(QRect(QPoint(), size), grid::kPanelCorner, grid::kPanelCorner);
    return mask;
}

}  // namespace

PanelPopup::PanelPopup(const Theme& theme, const Page& page, PressHandler press,
                       PanelSurface surface, bool isTranslucent, std::shared_ptr<Motion> motion)
    : QWidget(nullptr, windowKind(surface)),
      theme_(theme),
      surface_(surface),
      isTranslucent_(isTranslucent || coversWorkArea(surface)),
      scroller_(new QScrollArea(this)),
      view_(new PanelView(theme, std::move(press), scroller_, std::move(motion))) {
    setObjectName("panel");
    setWindowTitle("Tarnwick");
    setAccessibleName("Tarnwick");
    setAttribute(Qt::WA_TranslucentBackground, isTranslucent_);
    setFocusPolicy(Qt::NoFocus);
    view_->setPage(page);
    scroller_->setFrameShape(QFrame::NoFrame);
    scroller_->setFocusPolicy(Qt::NoFocus);
    scroller_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroller_->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroller_->setWidget(view_);
    scroller_->viewport()->setAutoFillBackground(false);
    view_->setAutoFillBackground(false);
    connect(view_, &PanelView::sizeChanged, this, &PanelPopup::place);
}

void PanelPopup::turnTo(const Page& page, std::optional<PanelAction> entry) {
    const ButtonWidget* button = view_->focusedButton();
    const bool isByKey = isCancelling_ || (button != nullptr && button->showsFocus());
    view_->turnTo(page, entry, isByKey ? Qt::ShortcutFocusReason : Qt::OtherFocusReason);
    scroller_->verticalScrollBar()->setValue(0);
    if (QWidget* focused = view_->focusedButton()) {
        scroller_->ensureWidgetVisible(focused, 0, grid::kPadding);
    }
}

void PanelPopup::popUp(const QRect& anchor) {
    anchor_ = anchor;
    if (coversWorkArea(surface_)) {
        // Until the compositor says how large the work area is.
        resize(screenOf(anchor)->size());
        winId();
        if (surface_ == PanelSurface::layer) {
            putOnLayer(*windowHandle());
        } else {
            setWindowState(Qt::WindowMaximized);
        }
    }
    place();
    // The window itself has the focus first: screen readers say that it is there, and no button has
    // the focus invisibly.
    setFocus(Qt::OtherFocusReason);
    show();
    activateWindow();
    if (windowType() == Qt::Popup && QGuiApplication::platformName() == "xcb") {
        foreignActivation_.emplace([this] {
            QMetaObject::invokeMethod(this, &PanelPopup::dismiss, Qt::QueuedConnection);
        });
        takeInput(1);
    }
}

// The toolkit grabs pointer and keyboard once, when the pop-up opens. That fails while another
// program holds them: a tray host until the button is released, or a menu until it closes. The
// toolkit does not notice a failed grab of the pointer, so this asks the server, which counts the
// toolkit's own grab as another one.
void PanelPopup::takeInput(int attempt) {
    if (!isVisible()) {
        return;
    }
    QWindow* window = windowHandle();
    window->setMouseGrabEnabled(false);
    const bool hasPointer = x11::isPointerFree(static_cast<xcb_window_t>(winId()));
    window->setMouseGrabEnabled(true);
    const bool hasKeyboard = window->setKeyboardGrabEnabled(true);
    if ((!hasPointer || !hasKeyboard) && attempt < kInputAttempts) {
        QTimer::singleShot(kFirstInputDelay * (1 << (attempt - 1)), this,
                           [this, attempt] { takeInput(attempt + 1); });
    }
}

void PanelPopup::putAway() {
    // On Wayland hiding makes the window inactive before it is hidden.
    isPutAway_ = true;
    hide();
}

void PanelPopup::dismiss() {
    wasDismissedByPress_ = !isPutAway_;
    hide();
}

void PanelPopup::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    if (coversWorkArea(surface_)) {
        placeInWorkArea();
    }
}

void PanelPopup::placeInWorkArea() {
    const QSize size(view_->width(), std::min(view_->height(), height() - 2 * kScreenMargin));
    // The compositor may show the window on another screen than the one that the item is on as far
    // as the program knows: hosts do not name the screen.
    const QScreen* itemScreen = screenOf(anchor_);
    const QPoint item = anchor_.center() - itemScreen->geometry().topLeft();
    scroller_->setGeometry(panelInWorkArea(size, item, screen()->size(), this->size()));
    update();
}

void PanelPopup::place() {
    if (coversWorkArea(surface_)) {
        placeInWorkArea();
        return;
    }
    const QScreen* screen = screenOf(anchor_);
    const QRect available = screen->availableGeometry();
    const QSize size(view_->width(),
                     std::min(view_->height(), available.height() - 2 * kScreenMargin));
    const QRect panel = isVisible() ? panelReplacement(panelRect().translated(pos()), size, anchor_,
                                                       screen->geometry(), available)
                                    : panelPlacement(size, anchor_, screen->geometry(), available);
    const int margin = isTranslucent_ ? kShadowMargin : 0;
    const QRect window = panel.adjusted(-margin, -margin, margin, margin);
    scroller_->setGeometry(QRect(QPoint(margin, margin), panel.size()));
    setFixedSize(window.size());
    move(window.topLeft());
    if (!isTranslucent_) {
        setMask(roundedMask(window.size()));
    }
    update();
}

void PanelPopup::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    constexpr int corner = grid::kPanelCorner;
    const QRect inside = panelRect().adjusted(corner, corner, -corner, -corner);
    if (inside.contains(event->rect())) {
        // New figures lie inside the panel, clear of its edge and its shadow.
        painter.fillRect(event->rect(), theme_.color(ColorRole::panel));
        return;
    }
    painter.setRenderHint(QPainter::Antialiasing);
    if (isTranslucent_) {
        paintShadow(painter, panelRect(), grid::kPanelCorner, theme_.isDark());
    }
    constexpr qreal half = grid::kHairline / 2.0;
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme_.color(ColorRole::panel));
    painter.drawRoundedRect(panelRect(), grid::kPanelCorner, grid::kPanelCorner);
    painter.setPen(QPen(theme_.color(ColorRole::hairline), grid::kHairline));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(QRectF(panelRect()).adjusted(half, half, -half, -half),
                            grid::kPanelCorner - half, grid::kPanelCorner - half);
}

void PanelPopup::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Cancel)) {
        // A held key would lead back and close the panel at once.
        if (!event->isAutoRepeat()) {
            cancel();
        }
        return;
    }
    if (event->key() == Qt::Key_F10 && event->modifiers() == Qt::ShiftModifier) {
        openMenu();
        return;
    }
    // No button has the focus, or the focused one did not use the key.
    if (!view_->walk(event->key()) && !scroll(event->key())) {
        QWidget::keyPressEvent(event);
    }
}

// The menu key comes here while no button has the focus. A right click beside the panel does, too.
void PanelPopup::contextMenuEvent(QContextMenuEvent* event) {
    if (event->reason() == QContextMenuEvent::Keyboard) {
        openMenu();
    }
}

void PanelPopup::openMenu() {
    const QWidget* focused = view_->focusedButton();
    view_->openMenu(focused != nullptr ? focused->mapToGlobal(focused->rect().center())
                                       : mapToGlobal(panelRect().center()));
}

void PanelPopup::cancel() {
    isCancelling_ = true;
    const bool stays = cancel_ && cancel_();
    isCancelling_ = false;
    if (!stays) {
        putAway();
    }
}

bool PanelPopup::scroll(int key) {
    QScrollBar* bar = scroller_->verticalScrollBar();
    switch (key) {
        case Qt::Key_Up:
            bar->triggerAction(QScrollBar::SliderSingleStepSub);
            return true;
        case Qt::Key_Down:
            bar->triggerAction(QScrollBar::SliderSingleStepAdd);
            return true;
        case Qt::Key_PageUp:
            bar->triggerAction(QScrollBar::SliderPageStepSub);
            return true;
        case Qt::Key_PageDown:
            bar->triggerAction(QScrollBar::SliderPageStepAdd);
            return true;
        case Qt::Key_Home:
            bar->triggerAction(QScrollBar::SliderToMinimum);
            return true;
        case Qt::Key_End:
            bar->triggerAction(QScrollBar::SliderToMaximum);
            return true;
        default:
            return false;
    }
}

void PanelPopup::mousePressEvent(QMouseEvent* event) {
    isPressedOutside_ = !panelRect().contains(event->position().toPoint());
}

// Hides on release, not on press: hiding ends the grab of the pointer, and the window below would
// take the release for a click, however late it comes.
void PanelPopup::mouseReleaseEvent(QMouseEvent*) {
    if (std::exchange(isPressedOutside_, false)) {
        dismiss();
    }
}

bool PanelPopup::event(QEvent* event) {
    if (event->type() == QEvent::WindowDeactivate && windowType() != Qt::Popup) {
        dismiss();
    }
    return QWidget::event(event);
}

void PanelPopup::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    if (!event->spontaneous()) {
        foreignActivation_.reset();
        emit hidden();
    }
}

}  // namespace tarnwick::qt
