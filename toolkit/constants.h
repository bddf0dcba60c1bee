// The toolkit's well-known numbers.
//
// They have the values that Windows gives them, so that a display for Windows
// can pass them on. That display's files include this header before <windows.h>,
// which defines macros of the same names.

#pragma once

constexpr int IDOK = 1;
constexpr int IDCANCEL = 2;
constexpr int IDYES = 6;
constexpr int IDNO = 7;

// Controls of every property sheet.
constexpr int IDC_TAB_CONTROL = 0x3020;
constexpr int IDC_APPLY_NOW = 0x3021;

// Buttons of PressButton.
constexpr int PSBTN_OK = 3;
constexpr int PSBTN_APPLYNOW = 4;
constexpr int PSBTN_CANCEL = 5;

// Message boxes.
constexpr unsigned MB_OK = 0x00;
constexpr unsigned MB_YESNO = 0x04;
constexpr unsigned MB_ICONHAND = 0x10;
constexpr unsigned MB_ICONQUESTION = 0x20;
constexpr unsigned MB_ICONEXCLAMATION = 0x30;
constexpr unsigned MB_ICONMASK = 0xF0;

constexpr int SW_HIDE = 0;
constexpr int SW_SHOW = 5;

constexpr unsigned CDDS_PREPAINT = 1;

// Tool tips.
constexpr unsigned TTF_IDISHWND = 0x01;
constexpr unsigned TTF_SUBCLASS = 0x10;

// File-save dialog.
constexpr unsigned OFN_OVERWRITEPROMPT = 0x00000002;
constexpr unsigned OFN_HIDEREADONLY = 0x00000004;
constexpr unsigned OFN_ENABLESIZING = 0x00800000;
constexpr unsigned OFN_DONTADDTORECENT = 0x02000000;
constexpr unsigned OFN_EX_NOPLACESBAR = 0x00000001;
