#include "toolkit/qt/DialogLook.h"

#include <QApplication>
#include <QChildEvent>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>
#include <QMessageBox>
#include <QPainter>
#include <QPainterPath>
#include <QPushButton>
#include <QRegularExpression>
#include <QSpacerItem>
#include <QStyle>

#include "toolkit/qt/on_screen.h"
#include "toolkit/qt/qt_text.h"
#include "toolkit/qt/window_icon.h"

namespace qt {

namespace {

// --- Signs ---------------------------------------------------------------------------------

QStyle::StandardPixmap StandardSign(QMessageBox::Icon icon) {
    switch (icon) {
    case QMessageBox::Critical:
        return QStyle::SP_MessageBoxCritical;
    case QMessageBox::Warning:
        return QStyle::SP_MessageBoxWarning;
    case QMessageBox::Question:
        return QStyle::SP_MessageBoxQuestion;
    default:
        return QStyle::SP_MessageBoxInformation;
    }
}

/// Draws a sign over the square from 0 to 16.
void DrawSign(QPainter& painter, QMessageBox::Icon icon) {
    const QColor red(204, 41, 54), yellow(245, 190, 40), blue(44, 110, 190);
    painter.setPen(Qt::NoPen);
    if (icon == QMessageBox::Warning) {
        QPainterPath triangle(QPointF(8, 2));
        triangle.lineTo(14.5, 13.5);
        triangle.lineTo(1.5, 13.5);
        triangle.closeSubpath();
        painter.setPen(QPen(yellow, 1.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.setBrush(yellow);
        painter.drawPath(triangle);
        painter.setPen(QPen(Qt::black, 1.7, Qt::SolidLine, Qt::RoundCap));
        painter.drawLine(QPointF(8, 6), QPointF(8, 9.3));
        painter.drawPoint(QPointF(8, 12));
        return;
    }
    painter.setBrush(icon == QMessageBox::Critical ? red : blue);
    painter.drawEllipse(QRectF(1, 1, 14, 14));
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(Qt::white, 1.9, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    if (icon == QMessageBox::Critical) {
        painter.drawLine(QPointF(5.3, 5.3), QPointF(10.7, 10.7));
        painter.drawLine(QPointF(10.7, 5.3), QPointF(5.3, 10.7));
    } else {
        QPainterPath mark;
        mark.arcMoveTo(QRectF(5.6, 3.6, 4.8, 4.8), 180);
        mark.arcTo(QRectF(5.6, 3.6, 4.8, 4.8), 180, -225);
        mark.lineTo(8, 9.4);
        painter.drawPath(mark);
        painter.drawPoint(QPointF(8, 12.2));
    }
}

/// The style's sign where it has it as large as it is shown; otherwise one of our own.
QPixmap Sign(const QMessageBox& box) {
    const int size = box.style()->pixelMetric(QStyle::PM_MessageBoxIconSize, nullptr, &box);
    const double ratio = box.devicePixelRatioF();
    const QIcon icon = box.style()->standardIcon(StandardSign(box.icon()), nullptr, &box);
    for (const QSize& available : icon.availableSizes())
        if (available.width() >= size * ratio) return icon.pixmap(QSize(size, size), ratio);
    QPixmap sign((QSizeF(size, size) * ratio).toSize());
    sign.setDevicePixelRatio(ratio);
    sign.fill(Qt::transparent);
    QPainter painter(&sign);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(size / 16.0, size / 16.0);
    DrawSign(painter, box.icon());
    return sign;
}

// --- Boxes ---------------------------------------------------------------------------------

/// Pixels beside the title and the text of a box: the frame's own buttons; the sign.
int BesideTitle(const QWidget& box) {
    return 4 * box.style()->pixelMetric(QStyle::PM_TitleBarHeight, nullptr, &box);
}
constexpr int kBesideText = 140;

/// Lets a word break, such as a path, that would be wider than the screen.
QString Bounded(QString text, const QMessageBox& box) {
    const int room = RoomFor(box).width() - kBesideText;
    static const QRegularExpression word("\\S+");
    for (qsizetype at = 0; at < text.size();) {
        const QRegularExpressionMatch match = word.match(text, at);
        if (!match.hasMatch()) break;
        at = match.capturedEnd();
        if (box.fontMetrics().horizontalAdvance(match.captured()) <= room) continue;
        const QString wrapped = Wrapped(match.captured(), box.font(), room);
        text.replace(match.capturedStart(), match.capturedLength(), wrapped);
        at = match.capturedStart() + wrapped.size();
    }
    return text;
}

void DressBox(QMessageBox& box) {
    QFont title = QApplication::font("QMdiSubWindowTitleBar");
    title.setBold(true);
    const int width = QFontMetrics(title).horizontalAdvance(box.windowTitle()) + BesideTitle(box);
    if (auto* grid = qobject_cast<QGridLayout*>(box.layout()))
        grid->addItem(new QSpacerItem(std::min(width, RoomFor(box).width()), 0), grid->rowCount(),
                      0, 1, std::max(1, grid->columnCount()));
    auto* sign = box.findChild<QLabel*>("qt_msgboxex_icon_label");
    if (sign != nullptr && box.icon() != QMessageBox::NoIcon) sign->setPixmap(Sign(box));
    const QString text = box.text();
    FitFont(box, [&] {
        box.setText(Bounded(text, box));
        QEvent layOut(QEvent::LayoutRequest);
        QCoreApplication::sendEvent(&box, &layOut);
        return box.size();
    });
}

void Dress(QDialog& dialog) {
    dialog.setAttribute(Qt::WA_KeyboardFocusChange);
    if (dialog.parentWidget() == nullptr) dialog.setWindowIcon(WindowIcon()); // others inherit it
    for (const auto* buttons : dialog.findChildren<QDialogButtonBox*>())
        for (QAbstractButton* button : buttons->buttons()) button->setIcon({});
    if (auto* box = qobject_cast<QMessageBox*>(&dialog)) DressBox(*box);
}

} // namespace

DialogLook::DialogLook(QDialog& dialog) {
    dialog.installEventFilter(this);
}

bool DialogLook::eventFilter(QObject* receiver, QEvent* event) {
    auto* dialog = qobject_cast<QDialog*>(receiver);
    if (dialog != nullptr && event->type() == QEvent::Show && !event->spontaneous()) Dress(*dialog);
    if (event->type() == QEvent::ChildPolished)
        if (auto* inner = qobject_cast<QDialog*>(static_cast<QChildEvent*>(event)->child()))
            inner->installEventFilter(this);
    return false;
}

} // namespace qt
