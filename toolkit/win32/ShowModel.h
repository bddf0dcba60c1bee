// From models to windows, and how wide texts are there.

#pragma once

#include <string_view>

#include "toolkit/win32/windows_api.h"

/// While one lives, windows change because a model did: what they report then is
/// nobody's input.
class Showing {
public:
    Showing() { ++s_Depth; }
    ~Showing() { --s_Depth; }
    Showing(const Showing&) = delete;
    Showing& operator=(const Showing&) = delete;

    static bool IsNow() { return s_Depth > 0; }

private:
    static inline int s_Depth = 0;
};

/// Brings the window of `model` in step with what changed.
void ShowChange(const CWnd& model, Change what);

/// Brings a control in step with all that its template can't hold.
void ShowAll(const CWnd& control);

/// Width in pixels of a text in the font of `window`, with tabs where an edit has them
/// unless told otherwise. Returns false if there is nothing to measure with.
bool MeasureText(HWND window, std::string_view text, int& width);
