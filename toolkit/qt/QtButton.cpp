// Push buttons, check boxes and radio buttons.

#include <QButtonGroup>
#include <QCheckBox>
#include <QKeyEvent>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalBlocker>
#include <QStyleOptionFocusRect>
#include <QStylePainter>
#include <algorithm>
#include <functional>

#include "toolkit/controls.h"
#include "toolkit/guarded.h"
#include "toolkit/input.h"
#include "toolkit/qt/QtPeer.h"
#include "toolkit/qt/qt_text.h"

namespace qt {

namespace {

/// Return presses the button that has the focus, not the dialog's default one.
class PushButton : public QPushButton {
public:
    using QPushButton::QPushButton;

protected:
    void keyPressEvent(QKeyEvent* event) override {
        if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
            click();
        else
            QPushButton::keyPressEvent(event);
    }

    /// Not every style tells a button with the focus from a default one.
    void paintEvent(QPaintEvent* event) override {
        QPushButton::paintEvent(event);
        if (!hasFocus() || !window()->testAttribute(Qt::WA_KeyboardFocusChange)) return;
        QStyleOptionButton button;
        initStyleOption(&button);
        QStyleOptionFocusRect option;
        option.QStyleOption::operator=(button);
        option.rect = style()->subElementRect(QStyle::SE_PushButtonFocusRect, &button, this);
        QStylePainter(this).drawPrimitive(QStyle::PE_FrameFocusRect, option);
    }
};

/// A check box or radio button that is hot all over, and whose mark changes only
/// when the model has changed.
template <class Button> class MarkedButton : public Button {
public:
    using Button::Button;

protected:
    bool hitButton(const QPoint& point) const override { return this->rect().contains(point); }
    void nextCheckState() override {}
};

class RadioButton : public MarkedButton<QRadioButton> {
public:
    using MarkedButton::MarkedButton;
    /// What an arrow key does: -1 goes to the button before, 1 to the next one.
    std::function<void(int step)> move;

protected:
    void keyPressEvent(QKeyEvent* event) override {
        const int key = event->key();
        if (key == Qt::Key_Up || key == Qt::Key_Left)
            Guarded([this] { move(-1); });
        else if (key == Qt::Key_Down || key == Qt::Key_Right)
            Guarded([this] { move(1); });
        else
            MarkedButton::keyPressEvent(event);
    }

    /// Which button of the group the Tab key finds does not depend on the focus.
    void focusInEvent(QFocusEvent* event) override {
        QWidget::focusInEvent(event); // NOLINT(bugprone-parent-virtual-call): not QRadioButton's
    }
};

class ButtonPeer : public QtPeer {
public:
    ButtonPeer(CWnd& model, QAbstractButton* button, QObject* reports)
        : QtPeer(model, button), m_Button(button) {
        QObject::connect(
            button, &QAbstractButton::clicked, reports,
            [this] { Guarded([this] { input::Click(m_Model); }); });
    }

    void Refresh(Change what) override {
        if (what == Change::Text) m_Button->setText(FromModel(m_Model.GetWindowText()));
        QtPeer::Refresh(what);
    }

protected:
    QAbstractButton* m_Button;
};

class MarkedPeer : public ButtonPeer {
public:
    MarkedPeer(CWnd& model, QAbstractButton* button, QObject* reports)
        : ButtonPeer(model, button, reports) {
        // Assistive programs set the mark itself, and wait until that has been done: a window that
        // comes of it must not keep them.
        const auto click = [this] {
            Guarded([this] {
                input::Click(m_Model);
                Refresh(Change::Checked);
            });
        };
        QObject::connect(button, &QAbstractButton::toggled, reports, click, Qt::QueuedConnection);
    }

    void Refresh(Change what) override {
        if (what == Change::Checked) {
            const QSignalBlocker blocker(m_Button);
            m_Button->setChecked(static_cast<const CButton&>(m_Model).GetCheck());
        }
        ButtonPeer::Refresh(what);
    }

    void RefreshAll() override {
        ButtonPeer::RefreshAll();
        Refresh(Change::Checked);
    }

    void Place(const QRect& place) override { PlaceCentered(place, m_Button->sizeHint()); }
};

class RadioPeer : public MarkedPeer {
public:
    RadioPeer(CWnd& model, RadioButton* radio, QObject* reports)
        : MarkedPeer(model, radio, reports) {
        // Which one is checked the model decides. A button that is not exclusive by itself would
        // be a check box for screen readers.
        auto* const free = new QButtonGroup(radio);
        free->setExclusive(false);
        free->addButton(radio);
        radio->move = [this](int step) { Move(step); };
    }

    void Refresh(Change what) override {
        MarkedPeer::Refresh(what);
        if (what != Change::Text) ChooseTabStop();
    }

private:
    bool CanTakeFocus() const { return m_Model.IsWindowEnabled() && m_Model.IsWindowVisible(); }

    /// The buttons of this group that have their widgets, in tab order.
    std::vector<RadioPeer*> Group() const {
        std::vector<RadioPeer*> group;
        for (const CButton* radio :
             static_cast<CDialog*>(m_Model.GetParent())->GetRadioGroup(m_Model))
            if (PeerOf(*radio) != nullptr) group.push_back(static_cast<RadioPeer*>(PeerOf(*radio)));
        return group;
    }

    /// The Tab key finds one button of a group: the checked one, or the first.
    void ChooseTabStop() {
        const std::vector<RadioPeer*> group = Group();
        const RadioPeer* stop = nullptr;
        for (const RadioPeer* radio : group) {
            if (!radio->CanTakeFocus()) continue;
            const bool checked = static_cast<const CButton&>(radio->m_Model).GetCheck();
            if (stop == nullptr || checked) stop = radio;
        }
        for (RadioPeer* radio : group)
            radio->m_Button->setFocusPolicy(radio == stop ? Qt::StrongFocus : Qt::ClickFocus);
    }

    /// Goes to another button of the group and checks it, round and round.
    void Move(int step) {
        std::vector<RadioPeer*> group = Group();
        std::erase_if(group, [](const RadioPeer* radio) { return !radio->CanTakeFocus(); });
        const auto here = std::ranges::find(group, this);
        if (here == group.end() || group.size() < 2) return;
        const auto count = static_cast<std::ptrdiff_t>(group.size());
        const auto next = static_cast<size_t>((here - group.begin() + step + count) % count);
        group[next]->m_Button->setFocus(Qt::TabFocusReason);
        input::Click(group[next]->m_Model);
    }
};

} // namespace

std::unique_ptr<QtPeer> MakePushButton(CWnd& model, const Surroundings& in) {
    auto* button = new PushButton(in.parent);
    button->setAutoDefault(false);
    button->setDefault((model.GetStyle() & style::Default) != 0);
    return std::make_unique<ButtonPeer>(model, button, in.reports);
}

std::unique_ptr<QtPeer> MakeCheckBox(CWnd& model, const Surroundings& in) {
    return std::make_unique<MarkedPeer>(model, new MarkedButton<QCheckBox>(in.parent), in.reports);
}

std::unique_ptr<QtPeer> MakeRadioButton(CWnd& model, const Surroundings& in) {
    return std::make_unique<RadioPeer>(model, new RadioButton(in.parent), in.reports);
}

} // namespace qt
