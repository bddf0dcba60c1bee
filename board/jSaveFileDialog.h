// jSaveFileDialog: one run of the file-save dialog.
//
// The dialog runs inside the constructor; afterwards the object holds what came
// of it.

#pragma once

#include <cstdint>

class CWnd;

class jSaveFileDialog {
public:
    /// Shows `initialDirectory`. `filters` is a null-terminated array of texts, in
    /// pairs of description and pattern. With one pair, whose pattern is "*." and an
    /// extension, the dialog asks about the file that a name will be with it added.
    jSaveFileDialog(CWnd* owner, const char* const* filters, const char* initialDirectory);

    char FileName[260] = {}; // full path
    int32_t Accepted = 0;    // 1: the user confirmed a file name
    int32_t FilterIndex = 1; // from 1
};
