#pragma once

#include "core/ZArrayT.h"
#include "core/ZRedBlackMap.h"

/// What the owner of a token space attaches to a token; the space never calls it.
using ZTokenCallback = void (*)(void* context);

/// One text of a `ZTokenSpace`.
struct ORV_API ZTokenData {
    int refCount = 1;
    int nameToken = 0;
    int length = 0;
    int hash = 0;
    ZTokenCallback callback = nullptr;
    char* text = nullptr; ///< zero-ended; owned

    ZTokenData() = default;
    /// Copies the text; `text` stays null when there is no memory, and for a length below 1.
    explicit ZTokenData(const char* text);
    ZTokenData(const char* text, int length);
    ZTokenData(const ZTokenData&) = delete;
    ~ZTokenData();
    /// Forgets the text without freeing it: somebody else has taken it over.
    void setNone() { text = nullptr; }
};
static_assert(sizeof(ZTokenData) == 32);

/// The order of the entries of a token space.
class ORV_API ZTokenUser : public ZRedBlackMap::MapUser {
public:
    /// One user serves all spaces, so it keeps no map.
    void assign(ZRedBlackMap*) override {}
    bool copy(const ZRedBlackMap* map, void* to, const void* from) override;
    void destruct(const ZRedBlackMap* map, void* entry) override;
    int comp(const ZRedBlackMap* map, const void* a, const void* b) override;
    uint hash(const ZRedBlackMap* map, const void* key, uint size) override;
};

/// A table of interned texts that belongs to whoever made it, and is used by one thread at a time. A text has an id
/// from 1 on. Ids below `referenceStart` are permanent; the others are counted and go with the last count. Some texts
/// may have a number of the owner's, a name token, by which their id is found in a row of a table.
///
/// What interns a text answers 0 for a text that is null or empty, when there is no memory, and while the space is
/// closed. A copy shares the table until one side changes it.
class ORV_API ZTokenSpace {
public:
    ZTokenSpace() = default;

    /// Makes the space ready, without tokens. Rows that were made while it was closed stay. False when there is no
    /// memory.
    bool open();
    /// Frees everything. Tokens that are left over may be destroyed.
    void close();
    bool isClosed() const { return closed; }

    // Interning. An id that is counted is counted once more.

    uint create(const char* text);
    uint create(const char* text, int length);
    uint create(const ZString& text);
    /// The same; a new entry gets the name token.
    uint make(const char* text, int nameToken);
    /// The same; the entry, new or not, gets name token and callback, and the row of the name token gets the id.
    uint createName(int nameToken, const char* text, ZTokenCallback callback);

    // Reading: 0 and null for what isn't there

    /// The id of a text, which isn't counted.
    uint nameIndex(const char* text) const;
    uint nameIndex(const char* text, int length) const;
    bool contains(const char* text) const { return nameIndex(text) != 0; }
    int nameToken(uint id) const;
    /// The id in the row of a name token; its text.
    uint tokenName(int nameToken) const;
    const char* tokenStr(int nameToken) const { return string(tokenName(nameToken)); }
    const char* string(uint id) const;
    int length(uint id) const;
    ZTokenCallback callback(uint id) const;
    bool setCallback(uint id, ZTokenCallback callback);
    uint count() const { return map.count(); }

    // Counting

    /// Counts an id once more, unless it is permanent, and answers it; 0 for an id that isn't there.
    uint retain(uint id);
    /// Counts an id down, unless it is permanent. With the last count the text goes; with `keepUnused` it stays, with
    /// count 1.
    void remove(uint id);
    int refcount(uint id) const;

    // Settings

    /// Makes rows for name tokens 0 to `count` - 1; new ones are empty. False when there is no memory.
    bool setNameCount(int count);
    void setKeepUnused(bool keep) { keepUnused = keep; }
    /// The first id that is counted.
    void setReferenceStart(int id) { referenceStart = id; }
    /// By how many entries the table grows; from the next `open` on.
    void setSlotLength(int length) { slotLength = length; }
    /// Takes the table of another space, shared.
    void setMap(const ZRedBlackMap& other);
    void setName_id(const ZArrayT<int>& ids) { name_id = ids; }
    const ZRedBlackMap& getMap() const { return map; }
    const ZArrayT<int>& getName_id() const { return name_id; }

    // Whole spaces

    void assign(const ZTokenSpace& other) { *this = other; }
    /// By id: by the first entries that differ, in text or name token, then by the number of entries.
    int compare(const ZTokenSpace& other) const;
    /// Gives this space a table of its own. False when there is no memory.
    bool detach();

private:
    const ZTokenData* get(uint id) const { return static_cast<const ZTokenData*>(map.entry(id)); }
    /// The entry for writing, in a table of this space's own; null without memory.
    ZTokenData* edit(uint id);
    bool counted(uint id) const { return !closed && int(id) >= referenceStart; }
    uint intern(const char* text, int length, int nameToken);
    /// Empties the rows of an id that goes.
    bool clearRows(uint id);

    bool closed = true;
    int slotLength = 1024;
    int referenceStart = 256;
    bool keepUnused = false;
    ZArrayT<int> name_id;
    ZRedBlackMap map;
};
