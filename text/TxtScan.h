// TxtScan: cuts a short text into tokens.
//
//     TxtScan scan(line, -1);
//     while (scan.GetToken() > TK_ERROR && scan.Kind != TK_END) ...
//
// Blanks, tabs, line ends and "//" comments separate tokens. There are no
// keywords: what a token means is its reader's business. Characters are 8-bit and
// no locale takes part. The text stays the caller's and has to outlive the scan.

#pragma once

#include <cstddef>
#include <cstdint>

/// What a token is. 6 is no kind.
enum TokenKind : int32_t {
    TK_ERROR = 0,   // malformed; the text is a message
    TK_IDENT = 1,   // a letter or "_", then letters, digits and "_"
    TK_DECIMAL = 2, // 12
    TK_INTEGER = 3, // 0x1F $1F 1Fh 0b101 12k 'AB'; the text: digits, empty for 'AB'
    TK_STRING = 4,  // "text"; the text: without quotes, escapes resolved
    TK_FLOAT = 5,   // 1.5 12. 1e-3; as written
    TK_PUNCT = 7,   // any other byte
    TK_END = 8,     // the end, again and again
};

class TxtScan final {
public:
    /// Bytes at Text. A token whose text does not fit is an error.
    static constexpr size_t kTextSize = 2048;

    /// Begins a scan of `text`, like Init. Null: there is nothing to scan yet.
    TxtScan(const char* text, int32_t length);
    ~TxtScan();
    TxtScan(const TxtScan&) = delete;
    TxtScan& operator=(const TxtScan&) = delete;

    /// Begins a new scan. `length` is the number of bytes, or -1: up to the NUL. With
    /// a length, too, a NUL has to stand somewhere behind the text, for a token that
    /// begins inside it is read to its own end. Null counts as empty.
    void Init(const char* text, int32_t length);

    /// Reads the next token into the members below and returns its kind. An error
    /// leaves the cursor at the token's start: the next call reports it again.
    virtual int32_t GetToken();

    union {
        int32_t Integer;    // TK_DECIMAL, TK_INTEGER: the low 32 bits of the number
        double Float;       // TK_FLOAT
    } Value;                // others leave it as it was; after an error it has no meaning
    char* Text;             // owned, kTextSize bytes; the token's text or the message
    int32_t Kind;           // what GetToken returned last
    int32_t Line;           // from 1
    int32_t Column;         // from 1, in bytes
    const char* Cursor;     // the first byte that is not read yet
    const char* TokenStart; // the first byte of the last token
    const char* End;

private:
    class TokenText;

    void SkipBlanksAndComments();
    int32_t ScanIdentifier();
    int32_t ScanNumber();
    int32_t ScanOtherNumber();
    int32_t ScanRadix(const char* digits, uint32_t bits, bool suffixed);
    int32_t ScanDecimal();
    int32_t ScanQuoted();
    static const char* ApplyScale(const char* at, uint32_t& value);
    int32_t Accept(TokenKind kind, const char* behind, TokenText text);
    int32_t Fail(const char* message);
};
