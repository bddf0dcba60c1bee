#include "toolkit/qt/layout.h"

#include "toolkit/CPropertySheet.h"
#include "toolkit/labels.h"
#include "toolkit/qt/DialogUnits.h"
#include "toolkit/qt/QtTabs.h"
#include "toolkit/qt/QtWindow.h"
#include "toolkit/qt/on_screen.h"

namespace qt {

namespace {

const CPropertySheet* SheetOf(const CDialog& dialog) {
    const CWnd* around = dialog.AsPage() != nullptr ? dialog.GetParent() : &dialog;
    return around != nullptr ? around->AsSheet() : nullptr;
}

/// The units of a dialog; all of a sheet has the same.
DialogUnits UnitsOf(const CDialog& dialog, const QFont& font) {
    DialogUnits units(font);
    const CPropertySheet* sheet = SheetOf(dialog);
    units.MakeRoomFor(*(sheet != nullptr ? sheet : &dialog)->GetDialogTemplate());
    if (sheet != nullptr)
        for (const CPropertyPage* page : sheet->GetPages())
            if (page->GetDialogTemplate() != nullptr) units.MakeRoomFor(*page->GetDialogTemplate());
    return units;
}

/// How much larger the tab control of a sheet must be than its template says, to
/// hold its titles and the largest page in this style and font.
QSize TabGrowth(const CDialog& dialog, const DialogUnits& units) {
    const TabsPeer* tabs = dialog.AsSheet() != nullptr ? TabsOf(dialog) : nullptr;
    if (tabs == nullptr) return {0, 0};
    QSize page(0, 0);
    for (const CPropertyPage* one : dialog.AsSheet()->GetPages())
        if (const DialogTemplate* layout = one->GetDialogTemplate())
            page = page.expandedTo(units.Size(layout->width, layout->height));
    return tabs->SizeAround(page) - units.Place(*tabs->Model().GetTemplate()).size();
}

QSize SizeOf(const CDialog& dialog, const QFont& font) {
    const DialogUnits units = UnitsOf(dialog, font);
    const DialogTemplate& layout = *dialog.GetDialogTemplate();
    return units.Size(layout.width, layout.height) + TabGrowth(dialog, units);
}

} // namespace

void LayOut(CDialog& dialog) {
    const QtPeer* peer = PeerOf(dialog);
    if (peer == nullptr || dialog.GetDialogTemplate() == nullptr) return;
    QWidget& window = *peer->Widget();
    if (window.isWindow()) FitFont(window, [&] { return SizeOf(dialog, window.font()); });
    const DialogUnits units = UnitsOf(dialog, window.font());
    const QSize growth = TabGrowth(dialog, units);
    window.setFixedSize(SizeOf(dialog, window.font()));

    for (const auto& control : dialog.GetControls()) {
        const ControlTemplate& row = *control->GetTemplate();
        QtPeer* controlPeer = PeerOf(*control);
        if (controlPeer == nullptr) continue; // not made yet, or never
        QRect place = units.Place(row);
        if (control->GetKind() == ControlKind::Tab)
            place.setSize(place.size() + growth);
        else if (const CWnd* group = GroupAround(*control)) // which holds it
            place.translate(-units.Place(*group->GetTemplate()).topLeft());
        else
            place.translate(growth.width(), growth.height());
        controlPeer->Place(place);
    }
    if (dialog.AsSheet() != nullptr)
        for (CPropertyPage* page : dialog.AsSheet()->GetPages()) LayOut(*page);
}

} // namespace qt
