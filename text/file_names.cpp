#include "text/file_names.h"

#include <cstring>
#include <string>

#include "platform/compare.h"
#include "platform/directory.h"
#include "platform/paths.h"
#include "text/jString.h"
#include "text/text_tools.h"

namespace {

// Points at the point of the last part's extension; null if that part has none.
const char* FindPoint(const char* path) {
    if (path == nullptr || *path == '\0') return nullptr;
    const char* at = path + std::strlen(path) - 1;
    while (at != path && (std::strchr(".\\/:", *at) == nullptr)) --at;
    return *at == '.' ? at : nullptr;
}

} // namespace

std::string WithDefaultExt(std::string name, const char* ext) {
    if (name.empty()) return name;
    const char quote = name.front();
    if (name.size() > 1 && name.back() == quote && (quote == '"' || quote == '\''))
        name = name.substr(1, name.size() - 2);
    if (!HasExtension(name.c_str())) name.append(".").append(ext);
    return name;
}

const char* AddDefaultExt(const char* name, const char* ext) {
    static char result[260];
    if (name == nullptr) name = "";
    if (ext == nullptr) ext = "";
    if (std::strlen(name) + std::strlen(ext) + 2 > sizeof result) return "BadFile.Ext";
    if (*name == '\0') return name;
    return CopyBounded(result, sizeof result, WithDefaultExt(name, ext).c_str());
}

bool HasExtension(const char* path) {
    return FindPoint(path) != nullptr;
}

const char* GetExtension(const char* path) {
    const char* const point = FindPoint(path);
    return point != nullptr && point[1] != '\0' ? point + 1 : nullptr;
}

bool MatchFileName(const char* pattern, const char* name) {
    if (pattern == nullptr || name == nullptr) return false;
    if (std::strcmp(pattern, "*.*") == 0) return true;
    if (std::strncmp(pattern, "*.", 2) == 0) {
        const char* const extension = GetExtension(name);
        return extension != nullptr && CompareNoCase(extension, pattern + 2) == 0;
    }
    return CompareNoCase(pattern, name) == 0;
}

namespace {

void AddListItem(jString& list, const std::string& item) {
    // Doubling keeps the gathering of thousands of names linear.
    const uint32_t needed = list.GetLength() + static_cast<uint32_t>(item.size()) + 1;
    if (list.Capacity <= needed) list.Reserve(2 * needed);
    if (list.GetLength() > 0) list.Append(";");
    list.Append(item.c_str());
}

} // namespace

bool FindFiles(const char* dir, const char* pattern, bool recurse, jString& result) {
    if (dir == nullptr || *dir == '\0') return false;
    Directory directory(dir);
    if (!directory.IsOpen()) return false;

    bool fits = recurse;
    DirectoryEntry entry;
    while (directory.Next(entry)) {
        const bool matches = MatchFileName(pattern, entry.Name.c_str());
        fits |= matches;
        if (!entry.IsDirectory) {
            if (matches) AddListItem(result, JoinPath(dir, entry.Name));
        } else if (recurse && entry.Name != "." && entry.Name != "..") {
            FindFiles(JoinPath(dir, entry.Name).c_str(), pattern, true, result);
        }
    }
    return fits && result.GetLength() > 0;
}

bool GetListItem(int32_t index, const char* list, jString& item) {
    for (; list != nullptr && index > 0; --index) {
        list = std::strchr(list, ';');
        if (list != nullptr) ++list;
    }
    if (list == nullptr || *list == '\0') return false;
    const size_t length = std::strcspn(list, ";");
    item.Assign(nullptr);
    if (item.Capacity <= length) item.Reserve(static_cast<uint32_t>(length));
    char* const text = item.GetBuffer();
    std::memcpy(text, list, length);
    text[length] = '\0';
    return true;
}
