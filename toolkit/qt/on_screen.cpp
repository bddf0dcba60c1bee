#include "toolkit/qt/on_screen.h"

#include <QApplication>
#include <QCursor>
#include <QScreen>
#include <QStyle>
#include <QWindow>
#include <algorithm>
#include <optional>

#include "toolkit/fit.h"

namespace qt {

namespace {

// Font sizes go by quarters of a point.
constexpr int kSteps = 4;
constexpr int kLeastPoints = 3;

// What Qt, too, takes for the frame of a window that has none yet.
constexpr QMargins kUsualFrame(5, 35, 5, 5);

// The process's, whatever becomes of the dialogs.
std::optional<QMargins> g_Frame;
std::optional<QRect> g_Kept; // with the frame

QMargins FrameOf(const QWidget& window) {
    if (const QWindow* handle = window.windowHandle())
        if (const QMargins frame = handle->frameMargins(); !frame.isNull()) return frame;
    return g_Frame.value_or(kUsualFrame);
}

int Area(QSize size) {
    return size.width() * size.height();
}

/// The screen of which `place` takes most; null if it lies on none.
QScreen* ScreenUnder(const QRect& place) {
    QScreen* best = nullptr;
    int most = 0;
    for (QScreen* screen : QGuiApplication::screens()) {
        const QRect common = screen->availableGeometry() & place;
        if (common.isEmpty() || Area(common.size()) <= most) continue;
        most = Area(common.size());
        best = screen;
    }
    return best;
}

/// The screen that a window is on, or will come up on.
QScreen* ScreenOf(const QWidget& window) {
    QScreen* screen = nullptr;
    if (window.testAttribute(Qt::WA_Moved) || window.isVisible())
        screen = ScreenUnder(window.frameGeometry());
    if (screen == nullptr && window.parentWidget() != nullptr)
        screen = window.parentWidget()->screen();
    const QWidget* host = QApplication::activeWindow();
    if (screen == nullptr && host != nullptr) screen = host->screen();
    if (screen == nullptr) screen = QGuiApplication::screenAt(QCursor::pos());
    return screen != nullptr ? screen : QGuiApplication::primaryScreen();
}

/// False where an application's style sheet gives fonts, which count whatever is set here.
bool TakesFonts() {
    return !qApp->styleSheet().contains("font");
}

} // namespace

QSize RoomFor(const QWidget& window) {
    const QScreen* screen = ScreenOf(window);
    if (screen == nullptr) return {QWIDGETSIZE_MAX, QWIDGETSIZE_MAX};
    return screen->availableGeometry().marginsRemoved(FrameOf(window)).size();
}

void ShrinkFont(QWidget& widget, const std::function<bool()>& fits) {
    const bool takes = TakesFonts();
    if (takes)
        widget.setFont({});
    else
        widget.ensurePolished(); // which gives it the style sheet's font
    const double own = QFontInfo(widget.font()).pointSizeF();
    if (!takes || own <= 0) {
        fits();
        return;
    }
    const int most = static_cast<int>(own * kSteps);
    LargestThatFits(std::min(most, kLeastPoints * kSteps), most, [&](int size) {
        QFont font; // sets what is set here, and leaves the rest to the application
        font.setPointSizeF(static_cast<double>(size) / kSteps);
        if (size < most) widget.setFont(font);
        return fits();
    });
}

void FitFont(QWidget& window, const std::function<QSize()>& measure) {
    const QSize room = RoomFor(window);
    ShrinkFont(window, [&] {
        const QSize needed = measure();
        return needed.width() <= room.width() && needed.height() <= room.height();
    });
}

bool LearnFrame(const QWidget& window) {
    const QMargins guess = g_Frame.value_or(kUsualFrame);
    if (window.windowHandle() != nullptr) g_Frame = window.windowHandle()->frameMargins();
    return g_Frame != guess;
}

void MoveOntoScreen(QWidget& window) {
    const QRect place(window.pos(), window.size().grownBy(FrameOf(window)));
    QRegion outside(place);
    for (const QScreen* screen : QGuiApplication::screens()) outside -= screen->availableGeometry();
    const QScreen* screen = ScreenOf(window);
    if (outside.isEmpty() || screen == nullptr) return;
    const QRect room = screen->availableGeometry();
    const auto within = [](int at, int size, int first, int count) {
        return std::max(first, std::min(at, first + count - size));
    };
    window.move(within(place.x(), place.width(), room.x(), room.width()),
                within(place.y(), place.height(), room.y(), room.height()));
}

void TakeKeptPlace(QWidget& window) {
    if (!g_Kept || ScreenUnder(*g_Kept) == nullptr) return;
    window.resize(g_Kept->size()); // until it gets its own
    window.move(g_Kept->topLeft());
}

void KeepPlace(const QWidget& window) {
    if (window.testAttribute(Qt::WA_WState_ExplicitShowHide)) g_Kept = window.frameGeometry();
}

} // namespace qt
