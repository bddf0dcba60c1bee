// Sliders.

#include <QMouseEvent>
#include <QSignalBlocker>
#include <QSlider>
#include <algorithm>

#include "toolkit/controls.h"
#include "toolkit/guarded.h"
#include "toolkit/input.h"
#include "toolkit/qt/QtPeer.h"

namespace qt {

namespace {

class Slider : public QSlider {
public:
    Slider(CSliderCtrl& model, QWidget* parent) : QSlider(Qt::Horizontal, parent), m_Model(model) {
        setFocusPolicy(Qt::StrongFocus);
    }

protected:
    void paintEvent(QPaintEvent* event) override {
        input::Paint(m_Model);
        QSlider::paintEvent(event);
    }

    void mouseReleaseEvent(QMouseEvent* event) override {
        const bool thumb = isSliderDown(); // then there is a signal
        QSlider::mouseReleaseEvent(event);
        if (!thumb && event->button() == Qt::LeftButton) input::Release(m_Model);
    }

    /// Only the wheel over a slider that has the focus is meant for it.
    void wheelEvent(QWheelEvent* event) override {
        if (hasFocus())
            QSlider::wheelEvent(event);
        else
            event->ignore();
    }

private:
    CSliderCtrl& m_Model;
};

class SliderPeer : public QtPeer {
public:
    SliderPeer(CSliderCtrl& model, Slider* slider, QObject* reports)
        : QtPeer(model, slider), m_Range(model), m_Slider(slider) {
        if ((model.GetStyle() & style::TicksBothSides) != 0)
            m_Slider->setTickPosition(QSlider::TicksBothSides);
        QObject::connect(
            slider, &QSlider::valueChanged, reports,
            [this](int position) {
                Guarded([&] {
                    input::Slide(m_Range, position);
                    Refresh(Change::Position);
                });
            });
        QObject::connect(slider, &QSlider::sliderReleased, reports,
                         [this] { input::Release(m_Range); });
    }

    void Refresh(Change what) override {
        const QSignalBlocker blocker(m_Slider);
        if (what == Change::Range) ShowRange();
        if (what == Change::Range || what == Change::Position) m_Slider->setValue(m_Range.GetPos());
        QtPeer::Refresh(what);
    }

    void RefreshAll() override {
        QtPeer::RefreshAll();
        Refresh(Change::Range);
    }

    void Place(const QRect& place) override {
        PlaceCentered(place, QSize(0, m_Slider->sizeHint().height()));
    }

private:
    void ShowRange() {
        m_Slider->setRange(m_Range.GetMinimum(), m_Range.GetMaximum());
        m_Slider->setPageStep(m_Range.GetPageSize());
        m_Slider->setSingleStep(m_Range.GetLineSize());
        // An interval wider than the slider leaves a mark at each end, as without ticks.
        const int all = std::max(1, m_Range.GetMaximum() - m_Range.GetMinimum());
        m_Slider->setTickInterval(m_Range.GetTicFreq() > 0 ? m_Range.GetTicFreq() : all);
    }

    CSliderCtrl& m_Range;
    Slider* m_Slider;
};

} // namespace

std::unique_ptr<QtPeer> MakeSlider(CWnd& model, const Surroundings& in) {
    auto& range = static_cast<CSliderCtrl&>(model);
    return std::make_unique<SliderPeer>(range, new Slider(range, in.parent), in.reports);
}

} // namespace qt
