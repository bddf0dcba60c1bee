#include "toolkit/qt/readable.h"

#include <QImage>
#include <QPainter>
#include <QPlainTextEdit>
#include <QStyle>
#include <QStyleOption>
#include <cmath>
#include <vector>

namespace qt {

namespace {

// Contrasts of colours. Thin strokes are drawn paler than their colour: the texts on the
// screen reach 3 and 4.5.
constexpr double kMadeOut = 3.8;
constexpr double kRead = 5.6;
constexpr double kFieldFromNote = 1.1;

// The property of a widget whose palette comes from here.
constexpr char kCorrected[] = "correctedColors";

double Luminance(const QColor& color) {
    const auto linear = [](double part) {
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
           0.0722 * linear(color.blueF());
}

QColor Mixed(const QColor& from, const QColor& to, float share) {
    const auto mix = [share](float a, float b) { return a + (b - a) * share; };
    return QColor::fromRgbF(mix(from.redF(), to.redF()), mix(from.greenF(), to.greenF()),
                            mix(from.blueF(), to.blueF()));
}

/// `text`, or the first colour on the way to `full`, and beyond that to black or white, that
/// stands out enough.
QColor StandingOut(const QColor& text, const QColor& full, const QColor& background,
                   double wanted) {
    const QColor farthest =
        Contrast(Qt::black, background) > Contrast(Qt::white, background) ? Qt::black : Qt::white;
    constexpr int kSteps = 20;
    for (const auto& [from, to] : {std::pair(text, full), std::pair(full, farthest)})
        for (int step = 0; step <= kSteps; ++step) {
            const QColor color = Mixed(from, to, static_cast<float>(step) / kSteps);
            if (Contrast(color, background) >= wanted) return color;
        }
    return farthest;
}

/// A colour as it looks on `background`, without its transparency.
QColor Flat(const QColor& color, const QColor& background) {
    return Mixed(background, color, color.alphaF());
}

// --- What styles draw behind a text ------------------------------------------------------

/// The colour in the middle of what `draw` draws for a disabled widget.
template <class Option> QColor Drawn(const QWidget& widget, const auto& draw) {
    QImage image(80, 40, QImage::Format_RGB32);
    image.fill(widget.palette().color(QPalette::Disabled, QPalette::Window));
    QPainter painter(&image);
    Option option;
    option.initFrom(&widget);
    option.palette.setCurrentColorGroup(QPalette::Disabled);
    option.rect = image.rect();
    option.state = QStyle::State_None;
    draw(option, painter);
    return image.pixelColor(image.rect().center());
}

QColor BehindButton(const QWidget& widget) {
    return Drawn<QStyleOptionButton>(
        widget,
        [&](auto& option, QPainter& painter) {
            option.state = QStyle::State_Raised;
            widget.style()->drawControl(QStyle::CE_PushButtonBevel, &option, &painter, &widget);
        });
}

QColor BehindList(const QWidget& widget) {
    return Drawn<QStyleOptionComboBox>(
        widget,
        [&](auto& option, QPainter& painter) {
            widget.style()->drawComplexControl(QStyle::CC_ComboBox, &option, &painter, &widget);
        });
}

/// The colour of the window, or of the page of a tab control that `widget` lies on.
QColor Behind(const QWidget& widget) {
    for (const QWidget* one = &widget; one != nullptr && !one->isWindow();
         one = one->parentWidget())
        if (one->inherits("QTabWidget"))
            return Drawn<QStyleOptionTabWidgetFrame>(*one, [one](auto& option, QPainter& painter) {
                one->style()->drawPrimitive(QStyle::PE_FrameTabWidget, &option, &painter, one);
            });
    return widget.palette().color(QPalette::Disabled, QPalette::Window);
}

// --- The corrections -----------------------------------------------------------------------

/// In `changes`, what makes a note of an edit: the colours of what it lies on, if they are
/// not a field's too.
void AddNoteColors(const QWidget& widget, QPalette& changes) {
    const QColor ground = Behind(widget);
    const QPalette& palette = widget.palette();
    for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        const QColor text = palette.color(group, QPalette::WindowText);
        const QColor field = palette.color(QPalette::Active, QPalette::Base);
        QColor note = ground;
        for (float share = 0.05F; Contrast(note, field) < kFieldFromNote && share < 1;
             share += 0.05F)
            note = Mixed(ground, text, share);
        changes.setColor(group, QPalette::Base, note);
        changes.setColor(group, QPalette::Text, text);
    }
}

struct Pair {
    QPalette::ColorRole text;
    QColor background;
};

/// What a widget writes in, and on.
std::vector<Pair> PairsOf(const QWidget& widget, const QPalette& palette) {
    const QColor field = palette.color(QPalette::Disabled, QPalette::Base);
    if (widget.inherits("QComboBox")) {
        const QColor list = BehindList(widget); // styles differ in the role
        return {{QPalette::ButtonText, list}, {QPalette::Text, list}};
    }
    if (widget.inherits("QPushButton")) return {{QPalette::ButtonText, BehindButton(widget)}};
    if (widget.inherits("QLineEdit") || widget.inherits("QPlainTextEdit"))
        return {{QPalette::Text, field}};
    if (!widget.isWindow()) return {{QPalette::WindowText, Behind(widget)}};
    return {{QPalette::WindowText, Behind(widget)},
            {QPalette::Text, field},
            {QPalette::ButtonText, BehindButton(widget)}};
}

void MakeOneReadable(QWidget& widget) {
    const bool hasPalette = widget.testAttribute(Qt::WA_SetPalette);
    // Colours that an application's style sheet has for it are the application's business.
    if (hasPalette && !widget.property(kCorrected).toBool()) return;
    if (hasPalette) widget.setPalette({});
    const auto* edit = qobject_cast<const QPlainTextEdit*>(&widget);
    QPalette changes; // holds them alone
    if (edit != nullptr && edit->isReadOnly()) AddNoteColors(widget, changes);
    const QPalette palette = changes.resolve(widget.palette());
    const double wanted = edit != nullptr ? kRead : kMadeOut;
    for (const Pair& pair : PairsOf(widget, palette)) {
        const QColor text = Flat(palette.color(QPalette::Disabled, pair.text), pair.background);
        const QColor full = Flat(palette.color(QPalette::Active, pair.text), pair.background);
        if (Contrast(text, pair.background) < wanted)
            changes.setColor(QPalette::Disabled, pair.text,
                             StandingOut(text, full, pair.background, wanted));
    }
    // Where an application has a style sheet, a palette does not reach the widgets inside.
    if (edit != nullptr) edit->viewport()->setPalette(changes);
    if (changes.resolveMask() == 0) return;
    widget.setPalette(changes);
    widget.setProperty(kCorrected, true);
}

} // namespace

double Contrast(const QColor& one, const QColor& other) {
    const double a = Luminance(one) + 0.05;
    const double b = Luminance(other) + 0.05;
    return a > b ? a / b : b / a;
}

void MakeReadable(QWidget& widget) {
    MakeOneReadable(widget);
    for (QObject* child : widget.children())
        if (child->isWidgetType() && !static_cast<QWidget*>(child)->isWindow())
            MakeReadable(*static_cast<QWidget*>(child));
}

} // namespace qt
