// Drop-down lists.

#include <QAbstractItemView>
#include <QComboBox>
#include <QScreen>
#include <QSignalBlocker>
#include <QWheelEvent>
#include <algorithm>

#include "toolkit/controls.h"
#include "toolkit/guarded.h"
#include "toolkit/input.h"
#include "toolkit/qt/DialogUnits.h"
#include "toolkit/qt/QtPeer.h"
#include "toolkit/qt/qt_text.h"

namespace qt {

namespace {

// In dialog units; a template gives the height of the open list. One more than a
// line of controls has, and one less than the distance between two of them.
constexpr int kClosedHeight = 13;

class ComboBox : public QComboBox {
public:
    explicit ComboBox(QWidget* parent) : QComboBox(parent) {
        setFocusPolicy(Qt::StrongFocus);
        setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    }

    /// Opens the list wide enough for its longest entry.
    void showPopup() override {
        const int room = screen()->availableGeometry().width() / 2;
        const int wanted = view()->sizeHintForColumn(0) + 2 * view()->frameWidth() +
                           style()->pixelMetric(QStyle::PM_ScrollBarExtent);
        view()->setMinimumWidth(std::min(wanted, room));
        QComboBox::showPopup();
    }

protected:
    /// Only the wheel over a list that has the focus is meant for it.
    void wheelEvent(QWheelEvent* event) override {
        if (hasFocus())
            QComboBox::wheelEvent(event);
        else
            event->ignore();
    }
};

class ComboBoxPeer : public QtPeer {
public:
    ComboBoxPeer(CComboBox& model, ComboBox* combo, QObject* reports)
        : QtPeer(model, combo), m_List(model), m_Combo(combo) {
        QObject::connect(
            combo, &QComboBox::currentIndexChanged, reports,
            [this](int index) {
                Guarded([&] {
                    input::Select(m_Model, index);
                    Refresh(Change::Selection);
                });
            });
    }

    void Refresh(Change what) override {
        const QSignalBlocker blocker(m_Combo);
        if (what == Change::Entries) ShowEntries();
        if (what == Change::Entries || what == Change::Selection)
            m_Combo->setCurrentIndex(m_List.GetCurSel());
        QtPeer::Refresh(what);
    }

    void RefreshAll() override {
        QtPeer::RefreshAll();
        Refresh(Change::Entries);
    }

    void Place(const QRect& place) override {
        const int height = DialogUnits(m_Combo->font()).Y(kClosedHeight);
        QtPeer::Place({place.topLeft(), QSize(place.width(), height)});
    }

private:
    /// A list is emptied or grows at its end, so only what is new has to be added.
    void ShowEntries() {
        if (m_List.GetCount() < m_Combo->count()) m_Combo->clear();
        for (int i = m_Combo->count(); i < m_List.GetCount(); ++i)
            m_Combo->addItem(FromModel(m_List.GetEntries()[static_cast<size_t>(i)]));
    }

    const CComboBox& m_List;
    ComboBox* m_Combo;
};

} // namespace

std::unique_ptr<QtPeer> MakeComboBox(CWnd& model, const Surroundings& in) {
    return std::make_unique<ComboBoxPeer>(static_cast<CComboBox&>(model), new ComboBox(in.parent),
                                          in.reports);
}

} // namespace qt
