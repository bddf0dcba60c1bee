// Any text through the tokenizer. The scan has to end, and stay inside the text.

#include <cstring>
#include <string>

#include "fuzz/target.h"
#include "text/TxtScan.h"

static void Tokenizer(const uint8_t* data, size_t size) {
    if (size == 0) return;
    const std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);
    // The first byte chooses how much of the text is scanned.
    const size_t length = std::strlen(text.c_str());
    const bool whole = data[0] == 255;
    TxtScan scan(text.c_str(), whole ? -1 : static_cast<int32_t>(length * data[0] / 255));

    while (scan.GetToken() != TK_END) {
        Require(scan.TokenStart >= text.c_str() && scan.Cursor <= text.c_str() + length);
        Require(std::strlen(scan.Text) < TxtScan::kTextSize);
        if (scan.Kind != TK_ERROR) {
            Require(scan.Cursor > scan.TokenStart);
            continue;
        }
        const std::string message = scan.Text;
        Require(scan.Cursor == scan.TokenStart && !message.empty());
        Require(scan.GetToken() == TK_ERROR && message == scan.Text);
        return;
    }
    Require(scan.GetToken() == TK_END && *scan.Text == '\0');
}

static const FuzzTarget kTokenizer("fuzz_tokenizer", Tokenizer);
