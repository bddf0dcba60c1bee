// NativeLook: the look of the windows made while it lives.
//
// A library can't choose for its host's process. So the windows of the module get
// the system's current controls by way of an activation context, made from the
// library's own manifest, and their sharpness on each monitor by way of the thread's
// awareness. A window keeps both; the host's own windows are not touched.

#pragma once

#include "toolkit/win32/windows_api.h"

/// The library (or, in a test, the program) that this code is linked into.
HINSTANCE ModuleInstance();

class NativeLook {
public:
    NativeLook();
    ~NativeLook();
    NativeLook(const NativeLook&) = delete;
    NativeLook& operator=(const NativeLook&) = delete;

private:
    bool m_Activated = false;
    ULONG_PTR m_Cookie = 0;
    void* m_AwarenessBefore = nullptr;
};
