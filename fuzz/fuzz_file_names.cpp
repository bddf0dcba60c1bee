// Any texts as names of files, patterns and lists. The first line is the one, the rest
// the other.

#include <algorithm>
#include <cstring>

#include "board/BoardFile.h"
#include "fuzz/target.h"
#include "platform/paths.h"
#include "text/file_names.h"
#include "text/jString.h"

namespace {

void CheckPath(const std::string& path) {
    const PathParts parts = SplitPath(path);
    Require(parts.Drive + parts.Directory + parts.Name + parts.Extension == path);
    Require(parts.Name.find_first_of("/\\") == path.npos);
    Require(path.starts_with(DirectoryOf(path)));
    const char* const extension = GetExtension(path.c_str());
    if (extension == nullptr) return;
    Require(*extension != '\0' && path.ends_with(extension));
    Require(HasExtension(path.c_str()) && parts.Extension == std::string(".") + extension);
}

void CheckDefaultExt(const std::string& name) {
    const std::string result = AddDefaultExt(name.c_str(), "mac");
    if (name.size() + 5 > 260) return Require(result == "BadFile.Ext");
    Require(result == WithDefaultExt(name, "mac") && result.size() < 260);
    Require(result.empty() == name.empty() && (name.empty() || HasExtension(result.c_str())));
}

/// The items of a list, put together again, give the list.
void CheckList(const std::string& list) {
    jString item;
    std::string joined;
    for (int32_t i = 0; GetListItem(i, list.c_str(), item); ++i) {
        joined += item.GetBuffer();
        joined += ';';
        Require(std::strlen(item.Data) == item.GetLength() && item.GetLength() < item.Capacity);
    }
    if (!list.ends_with(';')) joined.resize(joined.empty() ? 0 : joined.size() - 1);
    Require(joined == list);
}

} // namespace

static void FileNames(const uint8_t* data, size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    const std::string whole = text.c_str(); // up to its NUL
    const size_t end = std::min(whole.find('\n'), whole.size());
    const std::string name = whole.substr(0, end);
    const std::string other = whole.substr(std::min(end + 1, whole.size()));

    CheckPath(name);
    CheckDefaultExt(name);
    CheckList(name);
    Require(MatchFileName("*.*", name.c_str()));
    Require(MatchFileName(name.c_str(), name.c_str()) || name.starts_with("*."));
    const std::string path = JoinPath(name, other);
    Require(path.starts_with(name) && path.ends_with(other));
    CheckPath(path);
    if (MatchFileName(other.c_str(), name.c_str()) && !other.starts_with("*."))
        Require(other.size() == name.size());
    if (CanBeBoardFile(name, other))
        Require(path.size() <= kMaxBoardPath && MatchFileName("*.mac", other.c_str()));
}

static const FuzzTarget kFileNames("fuzz_file_names", FileNames);
