// Static texts and group boxes: what takes no input.

#include <QFontMetrics>
#include <QGroupBox>
#include <QLabel>
#include <QStylePainter>
#include <algorithm>

#include "toolkit/qt/QtPeer.h"
#include "toolkit/qt/qt_text.h"

namespace qt {

namespace {

class StaticPeer : public QtPeer {
public:
    StaticPeer(CWnd& model, QLabel* label) : QtPeer(model, label), m_Label(label) {
        m_Label->setTextFormat(Qt::PlainText);
    }

    void Refresh(Change what) override {
        if (what == Change::Text) m_Label->setText(LinesFromModel(m_Model.GetWindowText()));
        QtPeer::Refresh(what);
    }

    void Place(const QRect& place) override {
        const bool centered = (m_Model.GetStyle() & style::Centered) != 0;
        const bool lines = place.height() >= 2 * m_Label->fontMetrics().height();
        m_Label->setWordWrap(lines);
        m_Label->setAlignment((centered ? Qt::AlignHCenter : Qt::AlignLeft) |
                              (lines ? Qt::AlignTop : Qt::AlignVCenter));
        if (lines) return QtPeer::Place(place);
        QSize needed = m_Label->sizeHint();
        if (centered) needed.setWidth(0); // it would lean to the right
        PlaceCentered(place, needed);
    }

private:
    QLabel* m_Label;
};

/// A frame whose title interrupts the upper edge, on half of the title's height.
/// Styles draw the title above the frame, where templates have other controls. It holds the
/// controls of the group, which have a state of their own.
class GroupBox : public QGroupBox {
public:
    using QGroupBox::QGroupBox;

    /// By the attribute, since setEnabled would reach the controls too.
    void EnableAlone(bool enabled) {
        setAttribute(Qt::WA_Disabled, !enabled);
        update();
    }

protected:
    void paintEvent(QPaintEvent*) override {
        constexpr int kIndent = 7;
        constexpr int kGap = 4;
        constexpr int kRadius = 2;
        constexpr float kFaint = 0.3F;
        const QFontMetrics metrics = fontMetrics();
        const int room = std::max(0, width() - 2 * kIndent);
        const QString text = metrics.elidedText(title(), Qt::ElideRight, room);
        const QRect place(kIndent, 0, metrics.horizontalAdvance(text), metrics.height());

        QStylePainter painter(this);
        QColor line = palette().color(QPalette::WindowText);
        line.setAlphaF(kFaint);
        painter.setPen(line);
        painter.setRenderHint(QPainter::Antialiasing);
        if (!text.isEmpty())
            painter.setClipRegion(QRegion(rect()) - place.adjusted(-kGap, 0, kGap, 0));
        const int middle = metrics.height() / 2; // of the title
        const QRectF frame = QRectF(rect()).adjusted(0.5, middle + 0.5, -0.5, -0.5);
        painter.drawRoundedRect(frame, kRadius, kRadius);
        painter.setClipping(false);
        painter.drawItemText(place, Qt::AlignLeft | Qt::AlignVCenter, palette(), isEnabled(), text,
                             QPalette::WindowText);
    }
};

class GroupBoxPeer : public QtPeer {
public:
    GroupBoxPeer(CWnd& model, GroupBox* box) : QtPeer(model, box), m_Box(box) {}

    void Refresh(Change what) override {
        if (what == Change::Text) m_Box->setTitle(FromModel(m_Model.GetWindowText()));
        if (what == Change::Enabled) return m_Box->EnableAlone(m_Model.IsWindowEnabled());
        QtPeer::Refresh(what);
    }

private:
    GroupBox* m_Box;
};

} // namespace

std::unique_ptr<QtPeer> MakeStatic(CWnd& model, const Surroundings& in) {
    return std::make_unique<StaticPeer>(model, new QLabel(in.parent));
}

std::unique_ptr<QtPeer> MakeGroupBox(CWnd& model, const Surroundings& in) {
    return std::make_unique<GroupBoxPeer>(model, new GroupBox(in.parent));
}

} // namespace qt
