// Edits: of one line, and of several.

#include <QKeyEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QSignalBlocker>
#include <QTextBlock>
#include <QTextDocument>
#include <QValidator>
#include <algorithm>
#include <limits>

#include "toolkit/guarded.h"
#include "toolkit/input.h"
#include "toolkit/qt/QtPeer.h"
#include "toolkit/qt/qt_text.h"

namespace qt {

namespace {

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
        if ((styles & style::ReadOnly) == 0) return;
        ShowReadOnly(true);
        setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    }

    /// Read with the caret or the wheel; told from the others by its background.
    void ShowReadOnly(bool readOnly) {
        setReadOnly(readOnly);
        if (readOnly)
            setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
        viewport()->setBackgroundRole(readOnly ? QPalette::Window : QPalette::Base);
    }

    /// Makes a text of one line stand in the middle if there is no room for more.
    void FitOneLine() {
        const int line = fontMetrics().lineSpacing();
        const int room = height() - 2 * frameWidth();
        if (room >= 2 * line) return;
        const QSignalBlocker blocker(this);
        setLineWrapMode(QPlainTextEdit::NoWrap);
        document()->setDocumentMargin(std::max(0, (room - line) / 2));
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

    void changeEvent(QEvent* event) override {
        QPlainTextEdit::changeEvent(event);
        if (event->type() == QEvent::FontChange) SetTabStops();
    }

private:
    void SetTabStops() { setTabStopDistance(TabStop(font())); }

    uint32_t m_Styles;
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
        m_Edit->FitOneLine();
    }

private:
    /// The text with every character as it is; toPlainText replaces some.
    QString RawText() const { return m_Edit->document()->toRawText(); }

    void ShowText(const QString& text) {
        const QSignalBlocker blocker(m_Edit);
        m_Edit->setPlainText(text);
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
