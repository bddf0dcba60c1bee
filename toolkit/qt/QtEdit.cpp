// Edits: of one line, and of several.

#include <QKeyEvent>
#include <QLineEdit>
#include <QPainter>
#include <QPlainTextEdit>
#include <QSignalBlocker>
#include <QTextBlock>
#include <QTextDocument>
#include <QValidator>
#include <QWheelEvent>
#include <algorithm>
#include <limits>

#include "toolkit/guarded.h"
#include "toolkit/input.h"
#include "toolkit/qt/QtPeer.h"
#include "toolkit/qt/modal.h"
#include "toolkit/qt/on_screen.h"
#include "toolkit/qt/qt_text.h"
#include "toolkit/qt/readable.h"

namespace qt {

namespace {

constexpr int kNoteLines = 4;  // an edit with room for more of them is no note
constexpr int kNoteMargin = 4; // pixels around the text
constexpr int kRounding = 1;   // of widths, in pixels

bool OnlyDigits(const QString& text) {
    return std::ranges::all_of(
        text, [](QChar c) { return c >= u'0' && c <= u'9'; });
}

bool IsReadOnly(const CWnd& model) {
    return (model.GetStyle() & style::ReadOnly) != 0;
}

/// Lets digits in. A text that the model has set may hold more, and then any
/// change may be made to it.
class DigitsValidator : public QValidator {
public:
    DigitsValidator(const CWnd& model, QObject* parent) : QValidator(parent), m_Model(model) {}

    State validate(QString& text, int&) const override {
        if (OnlyDigits(text) || !OnlyDigits(FromModel(m_Model.GetWindowText()))) return Acceptable;
        return Invalid;
    }

private:
    const CWnd& m_Model;
};

class LineEditPeer : public QtPeer {
public:
    LineEditPeer(CWnd& model, QLineEdit* edit, QObject* reports)
        : QtPeer(model, edit), m_Edit(edit) {
        edit->setMaxLength(std::numeric_limits<int>::max());
        edit->setReadOnly(IsReadOnly(model));
        if ((model.GetStyle() & style::DigitsOnly) != 0)
            edit->setValidator(new DigitsValidator(model, edit));
        QObject::connect(edit, &QLineEdit::textChanged, reports, [this](const QString& text) {
            Guarded([&] { input::Type(m_Model, ToModel(text)); });
        });
    }

    void Refresh(Change what) override {
        if (what == Change::Text) ShowText(FromModel(m_Model.GetWindowText()));
        if (what == Change::ReadOnly) m_Edit->setReadOnly(IsReadOnly(m_Model));
        QtPeer::Refresh(what);
    }

private:
    void ShowText(const QString& text) {
        if (text == m_Edit->text()) return; // keeps the caret where it is
        const QSignalBlocker blocker(m_Edit);
        m_Edit->setText(text);
        if (!m_Edit->hasFocus()) m_Edit->setCursorPosition(0);
    }

    QLineEdit* m_Edit;
};

/// An edit of several lines without a scroll bar that it does not need.
class TextEdit : public QPlainTextEdit {
public:
    TextEdit(uint32_t styles, QWidget* parent) : QPlainTextEdit(parent), m_Styles(styles) {
        setTabChangesFocus(true);
        SetTabStops();
        ShowReadOnly((styles & style::ReadOnly) != 0);
        if (!isReadOnly()) return;
        setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    }

    /// Read with the caret or the wheel; told from the others by its background.
    void ShowReadOnly(bool readOnly) {
        setReadOnly(readOnly);
        setProperty(kTakesReturn, !readOnly && (m_Styles & style::WantReturn) != 0);
        if (readOnly)
            setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
        MakeReadable(*this);
    }

    /// Makes a note, which nobody scrolls, show whole: if need be without a margin or in a
    /// smaller font. One of one line stands in the middle.
    void ShowWhole(const QString& text) {
        FitNote(text);
        setPlainText(text); // behind the margin, which it would not heed otherwise
    }

protected:
    void keyPressEvent(QKeyEvent* event) override {
        const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
        const bool newLine =
            (m_Styles & style::WantReturn) != 0 || (event->modifiers() & Qt::ControlModifier) != 0;
        if (isReturn && !newLine)
            event->ignore(); // the dialog's default button
        else
            QPlainTextEdit::keyPressEvent(event);
    }

    /// Other controls have a frame that shows the focus.
    bool event(QEvent* event) override {
        const bool taken = QPlainTextEdit::event(event);
        if (event->type() == QEvent::Paint && hasFocus() &&
            window()->testAttribute(Qt::WA_KeyboardFocusChange)) {
            QPainter painter(this);
            painter.setPen(palette().color(QPalette::Highlight));
            painter.drawRect(rect().adjusted(0, 0, -1, -1));
        }
        return taken;
    }

    void focusInEvent(QFocusEvent* event) override {
        QPlainTextEdit::focusInEvent(event);
        update();
    }

    void focusOutEvent(QFocusEvent* event) override {
        QPlainTextEdit::focusOutEvent(event);
        update();
    }

    void wheelEvent(QWheelEvent* event) override {
        if (m_IsNote)
            event->ignore(); // the last line could be turned away
        else
            QPlainTextEdit::wheelEvent(event);
    }

    void changeEvent(QEvent* event) override {
        QPlainTextEdit::changeEvent(event);
        if (event->type() == QEvent::FontChange) SetTabStops();
    }

private:
    void FitNote(const QString& text) {
        setFont({});
        const int room = height() - 2 * frameWidth();
        m_IsNote = isReadOnly() && room < kNoteLines * fontMetrics().lineSpacing();
        if (!m_IsNote) return;
        const bool oneLine = room < 2 * fontMetrics().lineSpacing();
        setLineWrapMode(oneLine ? QPlainTextEdit::NoWrap : QPlainTextEdit::WidgetWidth);
        const auto fitsWith = [&](int margin) {
            const int across = width() - 2 * (frameWidth() + margin) - kRounding;
            const QSize needed =
                fontMetrics()
                    .boundingRect(QRect(0, 0, across, room), oneLine ? 0 : Qt::TextWordWrap, text)
                    .size();
            const int around = oneLine ? room - fontMetrics().lineSpacing() : 2 * margin;
            document()->setDocumentMargin(std::max(0, around / 2));
            return needed.width() <= across && needed.height() + around <= room;
        };
        ShrinkFont(*this, [&] { return fitsWith(kNoteMargin) || fitsWith(1); });
    }

    void SetTabStops() { setTabStopDistance(TabStop(font())); }

    uint32_t m_Styles;
    bool m_IsNote = false;
};

class TextEditPeer : public QtPeer {
public:
    TextEditPeer(CWnd& model, TextEdit* edit, QObject* reports)
        : QtPeer(model, edit), m_Edit(edit) {
        QObject::connect(
            edit, &QPlainTextEdit::textChanged, reports,
            [this] { Guarded([this] { ReportText(); }); });
    }

    void Refresh(Change what) override {
        if (what == Change::Text) ShowText(LinesFromModel(m_Model.GetWindowText()));
        if (what == Change::ReadOnly) m_Edit->ShowReadOnly(IsReadOnly(m_Model));
        QtPeer::Refresh(what);
    }

    void Place(const QRect& place) override {
        QtPeer::Place(place);
        if (m_Edit->isReadOnly()) Refresh(Change::Text);
    }

private:
    /// The text with every character as it is; toPlainText replaces some.
    QString RawText() const { return m_Edit->document()->toRawText(); }

    void ShowText(const QString& text) {
        const QSignalBlocker blocker(m_Edit);
        m_Edit->ShowWhole(text);
        m_Shown = RawText();
    }

    void ReportText() {
        QString text = RawText();
        if (text == m_Shown) return; // its looks have changed, not the text
        m_Shown = std::move(text);
        input::Type(m_Model, LinesToModel(m_Shown));
    }

    TextEdit* m_Edit;
    QString m_Shown;
};

} // namespace

std::unique_ptr<QtPeer> MakeEdit(CWnd& model, const Surroundings& in) {
    if ((model.GetStyle() & style::MultiLine) == 0)
        return std::make_unique<LineEditPeer>(model, new QLineEdit(in.parent), in.reports);
    return std::make_unique<TextEditPeer>(model, new TextEdit(model.GetStyle(), in.parent),
                                          in.reports);
}

} // namespace qt
