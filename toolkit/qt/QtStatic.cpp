// Static texts and group boxes: what takes no input.

#include <QFontMetrics>
#include <QGroupBox>
#include <QLabel>
#include <QStyleOption>
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
        // Rather reach into the gap beside it than lose the end of a text.
        QRect room = place;
        const QSize hint = m_Label->sizeHint();
        if (!centered) room.setWidth(std::max(room.width(), hint.width()));
        PlaceCentered(room, hint.height());
    }

private:
    QLabel* m_Label;
};

/// A frame whose title interrupts the upper edge, on half of the title's height.
class GroupBox : public QGroupBox {
public:
    using QGroupBox::QGroupBox;

protected:
    void paintEvent(QPaintEvent*) override {
        constexpr int kIndent = 7;
        constexpr int kGap = 3;
        QStylePainter painter(this);
        QStyleOptionGroupBox option;
        initStyleOption(&option);
        const QFontMetrics metrics = fontMetrics();
        const int room = std::max(0, width() - 2 * kIndent);
        const QString title = metrics.elidedText(option.text, Qt::ElideRight, room);
        const QRect text(kIndent, 0, metrics.horizontalAdvance(title), metrics.height());

        QStyleOptionFrame frame;
        frame.initFrom(this);
        frame.lineWidth = option.lineWidth;
        frame.midLineWidth = option.midLineWidth;
        frame.state |= QStyle::State_Sunken;
        frame.rect = rect().adjusted(0, metrics.height() / 2, 0, 0);
        if (!title.isEmpty())
            painter.setClipRegion(QRegion(rect()) - text.adjusted(-kGap, 0, kGap, 0));
        painter.drawPrimitive(QStyle::PE_FrameGroupBox, frame);
        painter.setClipping(false);
        painter.drawItemText(text, Qt::AlignLeft | Qt::AlignVCenter, palette(), isEnabled(), title,
                             QPalette::WindowText);
    }
};

class GroupBoxPeer : public QtPeer {
public:
    GroupBoxPeer(CWnd& model, GroupBox* box) : QtPeer(model, box), m_Box(box) {}

    void Refresh(Change what) override {
        if (what == Change::Text) m_Box->setTitle(FromModel(m_Model.GetWindowText()));
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
