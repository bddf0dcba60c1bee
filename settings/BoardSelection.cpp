#include "settings/BoardSelection.h"

#include "frame/interfaces/IOrnXTraceClient.h"
#include "platform/compare.h"

BoardSelection KindOfBoard(const char* text) {
    const auto is = [text](const char* special) { return CompareNoCase(text, special) == 0; };
    if (is(ORN_BOARD_UNKNOWN)) return BoardSelection::Unknown;
    if (is("")) return BoardSelection::Empty;
    if (is(ORN_BOARD_NONE)) return BoardSelection::None;
    return is(ORN_BOARD_STARTUP) ? BoardSelection::Startup : BoardSelection::File;
}
