#include "toolkit/win32/measure.h"

#include "toolkit/win32/WindowTable.h"

namespace {

constexpr std::string_view kLetters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";

/// The distance of the tab stops of an edit: 32 dialog units, eight mean characters.
int TabStop(HDC context) {
    SIZE size{};
    GetTextExtentPoint32A(context, kLetters.data(), static_cast<int>(kLetters.size()), &size);
    return 8 * static_cast<int>((size.cx / 26 + 1) / 2);
}

} // namespace

bool MeasureText(HWND window, std::string_view text, int& width) {
    const HDC context = window != nullptr ? GetDC(window) : nullptr;
    if (context == nullptr) return false;
    const auto font = reinterpret_cast<HGDIOBJ>(SendMessageA(window, WM_GETFONT, 0, 0));
    const HGDIOBJ before = font != nullptr ? SelectObject(context, font) : nullptr;
    const int stop = TabStop(context);
    width =
        LOWORD(GetTabbedTextExtentA(context, text.data(), static_cast<int>(text.size()), 1, &stop));
    if (before != nullptr) SelectObject(context, before);
    ReleaseDC(window, context);
    return true;
}

void FitLabel(HWND label) {
    if ((GetWindowLongA(label, GWL_STYLE) & SS_TYPEMASK) != SS_LEFTNOWORDWRAP) return;
    RECT place;
    GetWindowRect(label, &place);
    int width = 0;
    if (!MeasureText(label, TextOf(label), width) || width <= place.right - place.left) return;
    SetWindowPos(label, nullptr, 0, 0, width, place.bottom - place.top,
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}
