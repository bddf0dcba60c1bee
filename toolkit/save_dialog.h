// The file-save dialog.

#pragma once

#include <cstdint>

class CWnd;

/// What is asked of the dialog; the fields of the platform's classic record.
struct SaveFileRecord {
    uint32_t structSize = 0; // 76, or 88 with the fields from flagsEx on
    CWnd* owner = nullptr;
    // Pairs of description and pattern, each text with its NUL, a NUL at the end.
    const char* filter = nullptr;
    uint32_t filterIndex = 0; // from 1; receives the one that was left selected
    char* file = nullptr;     // receives the full path, terminated
    uint32_t maxFile = 0;     // bytes at `file`
    char* fileTitle = nullptr;
    uint32_t maxFileTitle = 0;
    const char* initialDirectory = nullptr;
    const char* title = nullptr;            // null: the display's own
    const char* defaultExtension = nullptr; // null: none is added
    uint32_t flags = 0;                     // OFN_ values
    uint32_t flagsEx = 0;
    // What the caller will add to a name without an extension, or null: the dialog adds
    // none for it, but asks about the file that will be written.
    const char* extensionToCome = nullptr;
};

/// Shows a directory, lets the person type or pick a name, asks before an existing
/// file is replaced, and gives back the full path. Returns true if the person
/// confirmed a name that fits into the record; false leaves `file` as it was.
bool GetSaveFileName(SaveFileRecord& record);

/// The platform's version: major version in the low byte, top bit clear for the
/// NT family and for everything that is not Windows.
uint32_t GetPlatformVersion();
