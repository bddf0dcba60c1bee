// A display in a library of its own, loaded with the first window: so a host that shows
// none does without the window system's libraries.
//
// The toolkit's code and its statics exist in the module alone. What a display calls of
// it goes through a table that the module hands over; only what is inline or virtual
// needs no entry here. load_display.cpp is the module's side and stands for MakeDisplay
// there; display_entry.cpp is linked into the display's library and stands for the
// toolkit there. Both include this header, which makes them of one build.

#pragma once

#include "build_identity.h" // generated: KVETM_TOOLKIT_HASH, over the toolkit's sources
#include "toolkit/CWinApp.h"
#include "toolkit/focus.h"
#include "toolkit/guarded.h"
#include "toolkit/help.h"
#include "toolkit/input.h"
#include "toolkit/labels.h"

namespace display_library {

#define KVETM_TEXT_OF(value) #value
#define KVETM_TEXT(value) KVETM_TEXT_OF(value)
/// What decides how objects lie in memory and what their functions mean: the toolkit's
/// sources, the compiler, its library.
inline constexpr char kBuildIdentity[] =
    "toolkit " KVETM_TOOLKIT_HASH ", compiler " __VERSION__ ", library " KVETM_TEXT(__GLIBCXX__);
#undef KVETM_TEXT
#undef KVETM_TEXT_OF

/// What a display calls of the toolkit, and what it must know from before its loading.
struct Toolkit {
    decltype(&AfxGetApp) afxGetApp;
    decltype(&CWinApp::CancelAll) cancelAll;
    decltype(&CDialog::GetDlgItem) getDlgItem;
    decltype(&CDialog::GetRadioGroup) getRadioGroup;
    decltype(&IsInSight) isInSight;
    decltype(&NextHelp) nextHelp;
    decltype(&HelpText) helpText;
    decltype(&GroupAround) groupAround;
    decltype(&LabelsOf) labelsOf;
    decltype(&ReportException) reportException;
    decltype(&input::Click) click;
    decltype(&input::Type) type;
    decltype(&input::Select) select;
    decltype(&input::Slide) slide;
    decltype(&input::Paint) paint;
    decltype(&input::Release) release;
    decltype(&input::Close) close;
    decltype(&input::Tick) tick;
    // In a process that was forked since the module was loaded: the Qt application that
    // came along; otherwise null.
    const void* (*forkedApplication)();
};

/// The one export of a display's library. Returns null, and has done nothing, if
/// `identity` is not that of its own build; otherwise a new display, owned by the
/// caller, which calls `toolkit`: that must live as long as the process. May throw.
/// All builds have this same signature under this name.
using Entry = Display*(const char* identity, const Toolkit* toolkit);
inline constexpr char kEntryName[] = "KVETMDisplay";

} // namespace display_library
