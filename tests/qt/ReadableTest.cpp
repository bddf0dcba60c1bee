// Texts that stand out, measured in the pixels of windows that are shown.

#include <QPainter>
#include <QPlainTextEdit>
#include <QStyleFactory>
#include <QStyleOptionButton>
#include <QStyleOptionComboBox>
#include <map>

#include "tests/qt/QtTest.h"
#include "toolkit/qt/readable.h"

namespace {

struct Readable : QtTest {
    ~Readable() override {
        QApplication::setStyle("Fusion");
        QApplication::setPalette(QPalette());
    }
};

/// Where a widget has its text, and nothing else.
QRect TextPlace(QWidget& widget) {
    const QStyle& style = *widget.style();
    QStyleOptionButton button;
    button.initFrom(&widget);
    QStyleOptionComboBox combo;
    combo.initFrom(&widget);
    if (widget.inherits("QCheckBox"))
        return style.subElementRect(QStyle::SE_CheckBoxContents, &button, &widget);
    if (widget.inherits("QRadioButton"))
        return style.subElementRect(QStyle::SE_RadioButtonContents, &button, &widget);
    if (widget.inherits("QComboBox"))
        return style.subControlRect(QStyle::CC_ComboBox, &combo, QStyle::SC_ComboBoxEditField,
                                    &widget);
    if (widget.inherits("QGroupBox"))
        return {7, 0, widget.fontMetrics().horizontalAdvance(widget.property("title").toString()),
                widget.fontMetrics().height()};
    return widget.rect().adjusted(6, 4, -6, -4);
}

/// The colours of what is shown of a widget's text, by their frequency.
std::multimap<int, QColor> Colors(QWidget& widget) {
    const QPixmap pixels = widget.window()->grab(
        {widget.mapTo(widget.window(), TextPlace(widget).topLeft()), TextPlace(widget).size()});
    const QImage image = pixels.toImage().convertToFormat(QImage::Format_RGB32);
    std::map<QRgb, int> counts;
    for (int y = 0; y < image.height(); ++y) {
        const QRgb* const row = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        for (int x = 0, begin = 0; x < image.width(); begin = x) {
            while (x < image.width() && row[x] == row[begin]) ++x;
            counts[row[begin]] += x - begin;
        }
    }
    std::multimap<int, QColor> colors;
    for (const auto& [color, count] : counts) colors.emplace(count, QColor(color));
    return colors;
}

QColor Background(QWidget& widget) {
    return Colors(widget).rbegin()->second;
}

double BestContrast(QWidget& widget) {
    double best = 1;
    const std::multimap<int, QColor> colors = Colors(widget);
    for (const auto& [count, color] : colors)
        best = std::max(best, qt::Contrast(color, colors.rbegin()->second));
    return best;
}

/// Names the disabled texts of a dialog's controls that are hard to see.
std::string TooFaint(const CDialog& dialog, QWidget& window) {
    std::string faint;
    for (const auto& control : dialog.GetControls()) {
        auto* widget = window.findChild<QWidget*>(QString::number(control->GetDlgCtrlID()));
        if (widget == nullptr || !widget->isVisible()) continue;
        const bool texts = control->GetKind() != ControlKind::Slider &&
                           control->GetKind() != ControlKind::Tab &&
                           (!control->GetWindowText().empty() || widget->inherits("QComboBox"));
        const double wanted = widget->inherits("QPlainTextEdit") ? 4.5 : 3.0;
        const double contrast = texts ? BestContrast(*widget) : wanted;
        if (contrast < wanted)
            faint += " " + widget->objectName().toStdString() + ":" + std::to_string(contrast);
    }
    return faint;
}

QPalette TwoColors(const char* text, const char* window, const char* base, const char* button) {
    QPalette palette{QColor(button), QColor(window)};
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(role, text);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        QColor faint(text);
        faint.setAlpha(70);
        palette.setColor(QPalette::Disabled, role, faint);
    }
    palette.setColor(QPalette::Base, base);
    return palette;
}

TEST_F(Readable, DisabledTextsStandOutAndNotesLookUnlikeFieldsInAnyPalette) {
    const std::pair<const char*, QPalette> palettes[] = {
        {"light", QPalette()},
        {"dark", TwoColors("#dfe1e5", "#2b2d30", "#1e1f22", "#3c3f41")},
        {"middle", TwoColors("#000000", "#808080", "#909090", "#888888")},
        {"one ground", TwoColors("#222222", "#ffffff", "#ffffff", "#ffffff")},
        {"night", TwoColors("#30d030", "#000000", "#000000", "#101010")},
        {"sand", TwoColors("#5c4b37", "#f4ecd8", "#fffaf0", "#e8dcc0")},
    };
    for (const char* style : {"Fusion", "Windows"})
        for (const char* family : {"DejaVu Sans", "Cantarell"})
            for (const auto& [name, palette] : palettes) {
                SCOPED_TRACE(std::string(style) + ", " + family + ", " + name);
                QApplication::setStyle(style);
                QApplication::setFont(QFont(family, 9));
                QApplication::setPalette(palette);
                for (const int number : {107, 108, 1001, 900}) {
                    CPropertyPage page(number);
                    CDialog configuration(1001);
                    CPropertySheet sheet("Sheet", nullptr, 0);
                    sheet.AddPage(&page);
                    CDialog& shown = number > 900    ? configuration
                                     : number == 900 ? static_cast<CDialog&>(dialog)
                                                     : page;
                    const QPalette& own = palette; // clang 14 captures no structured binding
                    Run(number < 900 ? sheet : shown, [&] {
                        for (const auto& control : shown.GetControls()) {
                            if (control->GetKind() == ControlKind::Edit)
                                control->SetWindowText("some text");
                            if (control->GetKind() == ControlKind::ComboBox) {
                                auto& list = static_cast<CComboBox&>(*control);
                                list.SetCurSel(list.AddString("an entry"));
                            }
                        }
                        QWidget& window = *QtPerson::Window();
                        if (number == 900) {
                            EXPECT_NE(Background(*user.Find(12)), Background(*user.Find(13)));
                            EXPECT_GT(BestContrast(*user.Find(13)), 4.5);
                        }
                        for (const auto& control : shown.GetControls())
                            if (control->GetDlgCtrlID() > 2) control->EnableWindow(false);
                        EXPECT_EQ(TooFaint(shown, window), "");
                        if (number != 107) return;
                        QApplication::setPalette(palettes[1].second); // while it is open
                        EXPECT_EQ(TooFaint(shown, window), "");
                        QApplication::setPalette(own);
                    });
                }
            }
}

TEST_F(Readable, AStyleSheetOfTheHostKeepsItsColors) {
    for (const bool whileOpen : {false, true}) {
        SCOPED_TRACE(whileOpen);
        const auto dark = [] {
            qApp->setStyleSheet("QWidget { background: #202020; color: #e8e8e8; }");
        };
        if (!whileOpen) dark();
        CPropertyPage page(107);
        CPropertySheet sheet("Sheet", nullptr, 0);
        sheet.AddPage(&page);
        Run(sheet, [&] {
            if (whileOpen) dark();
            for (const int id : {1036, 1061, 1032, 1029})
                EXPECT_GT(BestContrast(*user.Find(id)), 4.5) << id;
        });
        qApp->setStyleSheet({});
    }
}

// A host whose style sheet is about other things gets what one without gets.
TEST_F(Readable, AStyleSheetThatGivesNoColorsChangesNothing) {
    for (const char* text :
         {"QTreeView { background: #101010; }", "QPushButton { color: #302010; }",
          "QLineEdit { padding: 1px; }", "* { font-size: 9pt; }"}) {
        SCOPED_TRACE(text);
        qApp->setStyleSheet(text);
        for (const int number : {107, 108, 900}) {
            CPropertyPage page(number);
            CPropertySheet sheet("Sheet", nullptr, 0);
            sheet.AddPage(&page);
            CDialog& shown = number == 900 ? static_cast<CDialog&>(dialog) : page;
            Run(number == 900 ? shown : sheet, [&] {
                const bool noteIsOne =
                    number != 900 || Background(*user.Find(12)) != Background(*user.Find(13));
                EXPECT_TRUE(noteIsOne);
                for (const auto& control : shown.GetControls()) {
                    if (control->GetKind() == ControlKind::Edit)
                        control->SetWindowText("some text");
                    if (control->GetDlgCtrlID() > 2) control->EnableWindow(false);
                }
                EXPECT_EQ(TooFaint(shown, *QtPerson::Window()), "");
            });
        }
    }
    qApp->setStyleSheet({});
}

} // namespace
