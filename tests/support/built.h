// Where the build has put what tests load and run, as the build tells.

#pragma once

namespace built {

extern const char* const kEtmhost;
#ifndef _WIN32
extern const char* const kEtmhostConfiguration;
extern const char* const kModule;
extern const char* const kDisplay;
extern const char* const kChecker;
extern const char* const kOtherLibrarysHost;
extern const char* const kBoardExamples; ///< the folder in the documents, with a slash at the end
#endif

} // namespace built
