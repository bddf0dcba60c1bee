// The check of an address that a person typed.

#pragma once

class CWnd;

/// True iff `text` may be used as an address: the host decides if it evaluates
/// expressions (IOrnTraceClient); otherwise one integer constant is an address. A
/// refusal is told in a message box owned by `parent`, if that is not null. A null
/// `text` counts as empty. May block while the host evaluates.
bool ValidateAddress(CWnd* parent, const char* text);
