// What the chip offers, picked out of the host's capability report.
//
// The report is free text for people. It is searched for labels; each has a
// colon somewhere behind it and a value behind the colon. It ends at its first
// NUL.

#pragma once

#include <cstdint>

struct jTraceState;

/// Asks the host for the report and fills the members ProtocolVersion to
/// DemultiplexedFormatSupported of `state`. What the report does not tell is 0, and
/// the architecture version 10. REQUIRES: g_VETMTrace is attached.
void ReadCapabilities(jTraceState& state);

/// Finds `label` in `text`, then a colon, and reads the decimal number behind it into
/// `*field`; the number may stand on a later line. Returns false, leaving `*field` alone,
/// if one of the three is missing. A number beyond 32 bits becomes the nearest one.
bool ScanNumber(const char* text, const char* label, int32_t* field);

/// Finds `label` in `text`, then a colon, and stores 1 for a word that begins with
/// "yes" and 0 for one that begins with "no", in any case, on the colon's line. Returns
/// false, leaving `*field` alone, for anything else.
bool ScanYesNo(const char* text, const char* label, int32_t* field);

/// Returns the first character of `text` that is no white space, or a line feed.
const char* SkipBlanks(const char* text);
