// DialogBytes: a dialog as the system's own binary template, from the models.

#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "toolkit/win32/windows_api.h"

/// Composes a template (DLGTEMPLATEEX) in memory for CreateDialogIndirectParam: a
/// captioned window, or for a page a child without a frame.
class DialogBytes {
public:
    /// The size of the usual font.
    static constexpr int kPoints = 8;

    /// `points` is the size of the font.
    DialogBytes(const CDialog& dialog, int points);
    LPCDLGTEMPLATEA Get() const { return reinterpret_cast<LPCDLGTEMPLATEA>(m_Bytes.data()); }

private:
    struct Item {
        const char* className;
        std::string_view text;
        DWORD style;
        DWORD exStyle;
        int id;
    };
    void AddFrame(const CDialog& dialog, int points);
    void AddControl(const CWnd& control);
    void AddItem(const Item& item, const ControlTemplate& place);

    void Align();
    void Word(unsigned value);
    void DoubleWord(DWORD value);
    void Text(std::string_view text);

    std::vector<uint8_t> m_Bytes;
    size_t m_CountPlace = 0;
    WORD m_Count = 0;
};
