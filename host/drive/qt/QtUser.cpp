#include "host/drive/qt/QtUser.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QFile>
#include <QFileDialog>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMessageBox>
#include <QPainter>
#include <QPixmap>
#include <QPlainTextEdit>
#include <QPointer>
#include <QSlider>
#include <QStyleOptionSlider>
#include <QTabBar>
#include <QTabWidget>
#include <QToolTip>
#include <algorithm>
#include <stdexcept>

// Offers a key to the shortcuts first, as for a real keyboard. No header of Qt's declares it, but
// Qt's own test library calls it from its headers.
QT_BEGIN_NAMESPACE
Q_GUI_EXPORT bool qt_sendShortcutOverrideEvent(QObject* object, ulong timestamp, int key,
                                               Qt::KeyboardModifiers modifiers,
                                               const QString& text = QString(),
                                               bool repeated = false, ushort count = 1);
QT_END_NAMESPACE

namespace etmhost {

namespace {

QTabWidget* TabsOf(QWidget* window) {
    return window->findChild<QTabWidget*>(QString::number(kTabControl));
}

/// One event of the left button, which is down but for a release. Null: earlier events have ended
/// the widget.
void SendMouse(QWidget* widget, QEvent::Type type, QPoint place) {
    if (widget == nullptr) return;
    if (type == QEvent::MouseButtonPress && (widget->focusPolicy() & Qt::ClickFocus) != 0)
        widget->setFocus(Qt::MouseFocusReason);
    const bool move = type == QEvent::MouseMove, release = type == QEvent::MouseButtonRelease;
    QMouseEvent event(type, place, widget->mapToGlobal(QPointF(place)),
                      move ? Qt::NoButton : Qt::LeftButton, release ? Qt::NoButton : Qt::LeftButton,
                      Qt::NoModifier);
    QApplication::sendEvent(widget, &event);
}

void Mouse(QWidget* widget, QPoint place) {
    const QPointer<QWidget> alive = widget;
    for (const QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease})
        SendMouse(alive, type, place);
}

void SendKey(QWidget* widget, int key, Qt::KeyboardModifiers modifiers = {},
             const QString& text = {}) {
    const QPointer<QWidget> alive = widget;
    for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
        if (alive.isNull()) return;
        QKeyEvent event(type, key, modifiers, text);
        QApplication::sendEvent(widget, &event);
    }
}

/// The number of a key by its name.
int KeyOf(const std::string& name) {
    if (name.size() == 1) return name[0]; // letters and digits have their codes
    if (name == "Escape") return Qt::Key_Escape;
    return QKeySequence::fromString(QString::fromStdString(name == "PageUp"     ? "PgUp"
                                                           : name == "PageDown" ? "PgDown"
                                                                                : name))[0]
        .key();
}

template <class Widget> Widget& As(QWidget* widget, const char* what) {
    if (auto* wanted = qobject_cast<Widget*>(widget)) return *wanted;
    throw std::runtime_error(widget->objectName().toStdString() + " is no " + what);
}

/// The window, and the help over it, which may reach beyond its edges.
QPixmap WithTip(QWidget& window) {
    const QPixmap picture = window.grab();
    for (QWidget* tip : QApplication::topLevelWidgets()) {
        if (!tip->inherits("QTipLabel") || !tip->isVisible()) continue;
        const QRect place(tip->pos() - window.mapToGlobal(QPoint()), tip->size());
        const QRect all = window.rect().united(place);
        const double scale = picture.devicePixelRatio();
        QPixmap both(all.size() * scale);
        both.setDevicePixelRatio(scale);
        both.fill(Qt::transparent);
        QPainter painter(&both);
        painter.drawPixmap(-all.topLeft(), picture);
        painter.drawPixmap(place.topLeft() - all.topLeft(), tip->grab());
        return both;
    }
    return picture;
}

/// Where a slider's thumb is, and how far to the right it stands at `position`.
struct Thumb {
    QRect now, then;

    Thumb(const QSlider& slider, int position) {
        struct Opened : QSlider { // any style asks for what the slider alone can tell
            static void Ask(const QSlider& slider, QStyleOptionSlider& option) {
                (slider.*&Opened::initStyleOption)(&option);
            }
        };
        QStyleOptionSlider option;
        Opened::Ask(slider, option);
        const auto place = [&] {
            return slider.style()->subControlRect(QStyle::CC_Slider, &option,
                                                  QStyle::SC_SliderHandle, &slider);
        };
        now = place();
        option.sliderPosition = option.sliderValue = position;
        then = place();
    }
};

QString Caption(const QAbstractButton& button) {
    return QString::fromStdString(WithoutMarks(button.text().toStdString()));
}

} // namespace

QWidget* QtUser::Window() {
    QWidget* window = QApplication::activeModalWidget();
    return window != nullptr && window->isVisible() ? window : nullptr;
}

FrontWindow QtUser::Front() {
    QWidget* window = Window();
    if (window == nullptr) return {};
    FrontWindow front{FrontWindow::Dialog, window->windowTitle().toStdString(), {}, false};
    if (const auto* box = qobject_cast<QMessageBox*>(window)) {
        front.kind = FrontWindow::Box;
        front.text = box->text().toStdString();
    } else if (qobject_cast<QFileDialog*>(window) != nullptr) {
        front.kind = FrontWindow::Save;
    }
    front.sheet = TabsOf(window) != nullptr;
    return front;
}

QWidget* QtUser::Look(int id) {
    QWidget* window = Window();
    if (window == nullptr) return nullptr;
    const QString name = QString::number(id);
    const QTabWidget* tabs = TabsOf(window);
    if (tabs != nullptr && tabs->currentWidget() != nullptr)
        if (auto* control = tabs->currentWidget()->findChild<QWidget*>(name)) return control;
    for (QWidget* control : window->findChildren<QWidget*>(name))
        if (tabs == nullptr || control == tabs || !tabs->isAncestorOf(control)) return control;
    return nullptr;
}

QWidget* QtUser::Find(int id) {
    if (QWidget* control = Look(id)) return control;
    throw std::runtime_error("no control " + std::to_string(id) + " in front");
}

std::vector<int> QtUser::WithCaption(const std::string& caption) {
    std::vector<int> found;
    for (const auto* button : Window()->findChildren<QAbstractButton*>())
        if (button->isVisible() && Caption(*button).toStdString() == caption)
            found.push_back(button->objectName().toInt());
    return found;
}

QWidget* QtUser::FocusWidget() {
    QWidget* const window = Window();
    return window->focusWidget() != nullptr ? window->focusWidget() : window;
}

// --- Acts --------------------------------------------------------------------------

void QtUser::Click(int id) {
    QWidget* widget = Find(id);
    Mouse(widget, widget->rect().center());
}

void QtUser::Type(int id, const std::string& text) {
    const QPointer<QWidget> edit = Find(id);
    if (qobject_cast<QLineEdit*>(edit) == nullptr) As<QPlainTextEdit>(edit, "edit");
    if (edit->property("readOnly").toBool())
        throw std::runtime_error(std::to_string(id) + " can only be read");
    edit->setFocus();
    SendKey(edit, Qt::Key_A, Qt::ControlModifier);
    if (!edit.isNull()) SendKey(edit, Qt::Key_Delete);
    if (!edit.isNull()) Write(text);
}

void QtUser::Write(const std::string& text) {
    const QPointer<QWidget> widget = FocusWidget();
    const QString typed = QString::fromStdString(text).remove('\r');
    for (const char32_t character : typed.toUcs4()) {
        if (widget.isNull()) return;
        if (character == U'\n')
            SendKey(widget, Qt::Key_Return, {}, "\r");
        else
            SendKey(widget, 0, {}, QString::fromUcs4(&character, 1));
    }
}

/// Opens the list by the mouse, as its owner does it: what may be done meanwhile is seen to. The
/// entry is picked by keys, since a list does not take a click that follows its opening too soon.
void QtUser::Select(int id, int index) {
    const QPointer<QComboBox> combo = &As<QComboBox>(Find(id), "list");
    Mouse(combo, combo->rect().center());
    const QPointer<QWidget> list = combo.isNull() ? nullptr : combo->view();
    if (list.isNull() || !list->isVisible())
        throw std::runtime_error("the list of " + std::to_string(id) + " does not open");
    SendKey(list, Qt::Key_Home);
    for (int row = 0; row < index && !list.isNull(); ++row) SendKey(list, Qt::Key_Down);
    if (!list.isNull()) SendKey(list, Qt::Key_Return);
}

void QtUser::Tab(int index) {
    QTabBar* bar = As<QTabWidget>(Find(kTabControl), "tabs").tabBar();
    Mouse(bar, bar->tabRect(index).center());
}

/// Moves the thumb by the mouse. Where a pixel is more than one step, the arrows do the rest.
void QtUser::Drag(int id, int position) {
    const QPointer<QSlider> slider = &As<QSlider>(Find(id), "slider");
    position = std::clamp(position, slider->minimum(), slider->maximum());
    const Thumb thumb(*slider, position);
    const QPoint from = thumb.now.center();
    SendMouse(slider, QEvent::MouseButtonPress, from);
    SendMouse(slider, QEvent::MouseMove, from + thumb.then.topLeft() - thumb.now.topLeft());
    for (int steps = slider.isNull() ? 0 : slider->maximum() - slider->minimum();
         steps > 0 && !slider.isNull() && slider->sliderPosition() != position; --steps)
        SendKey(slider, slider->sliderPosition() < position ? Qt::Key_Right : Qt::Key_Left);
    if (!slider.isNull()) slider->repaint(); // what stands beside it follows that
    SendMouse(slider, QEvent::MouseButtonRelease,
              from + thumb.then.topLeft() - thumb.now.topLeft());
}

void QtUser::Press(const KeyName& key) {
    QWidget* const widget = FocusWidget();
    const Qt::KeyboardModifiers modifiers = (key.control ? Qt::ControlModifier : Qt::NoModifier) |
                                            (key.shift ? Qt::ShiftModifier : Qt::NoModifier) |
                                            (key.alt ? Qt::AltModifier : Qt::NoModifier);
    const int code = KeyOf(key.name);
    QString text;
    if (key.name.size() == 1 && !key.control && !key.alt)
        text = key.shift ? QChar(code) : QChar(code).toLower();
    if (code == Qt::Key_Space) text = " ";
    const int pressed = code == Qt::Key_Tab && key.shift ? int(Qt::Key_Backtab) : code;
    if (!qt_sendShortcutOverrideEvent(widget, 0, pressed, modifiers, text))
        SendKey(widget, pressed, modifiers, text);
}

void QtUser::CloseFrame() {
    QWidget* window = Window();
    if (window == nullptr) return;
    window->close();
    // A box that has no button for it does not take it.
    if (auto* box = qobject_cast<QMessageBox*>(window); box != nullptr && Window() == window)
        box->buttons().last()->click();
}

void QtUser::AnswerBox(Answer answer) {
    auto& box = dynamic_cast<QMessageBox&>(*Window());
    if (answer == Answer::Escape) return SendKey(&box, Qt::Key_Escape);
    constexpr QMessageBox::StandardButton buttons[] = {QMessageBox::Yes, QMessageBox::No,
                                                       QMessageBox::Ok, QMessageBox::Cancel};
    QAbstractButton* button = box.button(buttons[static_cast<size_t>(answer)]);
    if (button == nullptr) throw std::runtime_error("the box has no such button");
    Mouse(button, button->rect().center());
}

void QtUser::SaveAs(const std::string& path) {
    auto& dialog = dynamic_cast<QFileDialog&>(*Window());
    if (path.empty()) return dialog.reject();
    dialog.findChild<QLineEdit*>("fileNameEdit")->setText(QString::fromStdString(path));
    QMetaObject::invokeMethod(&dialog, "accept");
}

void QtUser::TakePicture(const std::filesystem::path& file) {
    if (!WithTip(*Window()).save(QFile::decodeName(file.c_str())))
        throw std::runtime_error("cannot write the picture " + file.string());
}

// --- What is seen --------------------------------------------------------------------

std::string QtUser::Text(int id) {
    QWidget* widget = Find(id);
    if (auto* lines = qobject_cast<QPlainTextEdit*>(widget))
        return lines->toPlainText().replace("\n", "\r\n").toStdString();
    return widget->property("text").toString().toStdString();
}

bool QtUser::Checked(int id) {
    return As<QAbstractButton>(Find(id), "button").isChecked();
}

std::vector<std::string> QtUser::Entries(int id) {
    QWidget* widget = Find(id);
    std::vector<std::string> entries;
    if (const auto* tabs = qobject_cast<QTabWidget*>(widget)) {
        for (int i = 0; i < tabs->count(); ++i)
            entries.push_back(WithoutMarks(tabs->tabText(i).toStdString()));
    } else {
        const auto& combo = As<QComboBox>(widget, "list");
        for (int i = 0; i < combo.count(); ++i) entries.push_back(combo.itemText(i).toStdString());
    }
    return entries;
}

std::string QtUser::Help() {
    return QToolTip::isVisible() ? QToolTip::text().replace(u'\n', u' ').toStdString() : "";
}

int QtUser::Focus() {
    const QWidget* widget = Window()->focusWidget();
    while (widget != nullptr && widget->objectName().toInt() == 0) widget = widget->parentWidget();
    return widget != nullptr ? widget->objectName().toInt() : 0;
}

} // namespace etmhost
