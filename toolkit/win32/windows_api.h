// The system's headers, behind the toolkit's.
//
// They define macros of the same names as the toolkit's constants (IDOK, MB_OK), with
// the same values, so they have to come second; and they would rename some of the
// toolkit's operations, which are given back their names here. No header outside of
// this folder includes this one.

#pragma once

#include "toolkit/CPropertySheet.h"
#include "toolkit/constants.h"
#include "toolkit/display.h"
#include "toolkit/guarded.h"
#include "toolkit/input.h"
#include "toolkit/save_dialog.h"

#ifndef STRICT
#define STRICT
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#include <commctrl.h>
#include <commdlg.h>

#undef GetWindowText
#undef SetWindowText
#undef MessageBox
#undef GetSaveFileName
