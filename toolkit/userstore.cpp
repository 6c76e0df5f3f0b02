#include "toolkit/userstore.h"

#include "toolkit/coding.h"
#include "toolkit/files.h"
#include "toolkit/memory.h"
#include "toolkit/places.h"
#include "toolkit/utf8.h"

#include <cerrno>
#include <cstring>

namespace toolkit {

namespace {

/// The file of a name. Letters, digits, "-" and "_" stand for themselves, all other bytes are written as "%xx", so that
/// no name leaves the folder.
bool userFile(const char* name, PathText& path) {
    if (!name || !*name || std::strlen(name) > 80) return false;
    if (userDataFolder(path) != 0 || !path.join("user") || !path.join("")) return false;
    for (const char* at = name; *at; ++at) {
        byte c = byte(*at);
        bool plain = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' || c == '_';
        char coded[3] = {'%'};
        if (!plain) hexEncode(at, 1, coded + 1);
        if (!path.append(plain ? at : coded, plain ? 1 : 3)) return false;
    }
    return true;
}

bool storable(const char* text, size_t length) {
    if (length == 0 || length > userTextLimit) return false;
    for (size_t i = 0; i < length; ++i)
        if (byte c = byte(text[i]); c < 32 && c != '\t' && c != '\n') return false;
    return utf8Valid(text, length);
}

} // namespace

char* loadUserText(const char* name, size_t& length) {
    length = 0;
    PathText path;
    if (!userFile(name, path)) return nullptr;
    size_t size = 0;
    int error = 0;
    auto text = static_cast<char*>(readFile(path.text(), userTextLimit + 1, size, error));
    if (!text) return nullptr;
    // The closing line end tells that the file is whole.
    if (size < 2 || text[size - 1] != '\n' || !storable(text, size - 1)) {
        freeBlock(text);
        return nullptr;
    }
    length = size - 1;
    text[length] = 0;
    return text;
}

bool storeUserText(const char* name, const char* text, size_t length) {
    PathText path;
    if (!userFile(name, path)) return false;
    if (length == 0) {
        int error = removeFile(path.text());
        return error == 0 || error == ENOENT;
    }
    if (!storable(text, length)) return false;
    PathText folder;
    if (!folder.assign(path.text())) return false;
    folder.cutName();
    if (createFolder(folder.text(), true, usersFolder) != 0) return false;
    auto line = static_cast<char*>(allocBlock(length + 1));
    if (!line) return false;
    std::memcpy(line, text, length);
    line[length] = '\n';
    int error = writeFile(path.text(), line, length + 1);
    freeBlock(line);
    return error == 0;
}

} // namespace toolkit
