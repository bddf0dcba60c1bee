// The check of a Begin or End field where it takes a DWT comparator.

#pragma once

class CWnd;

/// True iff `text` is one digit from 0 to 3, with white space around it or not. A
/// refusal is told in a message box owned by `owner`.
bool CheckComparatorIndex(CWnd& owner, const char* text);
