#include "core/ZSelectorData.h"

#include "core/ZSelectorSpace.h"
#include "core/construct.h"
#include "toolkit/hash.h"

#include <algorithm>
#include <cstring>

using orv::detail::SelectorItems;
using orv::detail::SelectorPart;
using toolkit::loadAcquire;
using toolkit::storeRelease;

ZSelectorData::ZSelectorData(const char* borrowedText, size_t bytes, ZSelector::Type kind, ularge bits) {
    textHash = bits;
    marks = borrowed;
    type = kind;
    length = uint(bytes);
    hash = toolkit::limitHash(bits, ZSelectorSpace::hashSize);
    text = const_cast<char*>(borrowedText);
}

ZSelectorData::ZSelectorData(const ZSelector& name, const ZSelector& result, const ZSelector* items, int count,
                             ZSelector::Type kind)
    : type(kind), nameSel(name), resultSel(result) {
    if (count > 0) {
        params = zmakearray<ZSelector>(size_t(count));
        if (!params) {
            ZError::fail();
            return;
        }
        std::copy_n(items, count, params);
        paramCount = uint(count);
    }
    if (!resolveName()) ZError::fail();
}

ZSelectorData::~ZSelectorData() {
    if (!(flags & Linked) && !(marks & borrowed)) zfree(text);
    zreleasearray(params);
    zfree(zarrayblock(sortedParams));
}

bool ZSelectorData::copy(const ZSelectorData& other) {
    char* copied = other.text;
    ZSelector* items = nullptr;
    if (!(other.flags & Linked)) {
        copied = static_cast<char*>(__zalloc(other.length + size_t(1)));
        if (!copied) return false;
        std::memcpy(copied, other.text, other.length);
        copied[other.length] = 0;
    }
    if (other.paramCount) {
        items = zmakearray<ZSelector>(other.paramCount);
        if (!items) {
            if (copied != other.text) zfree(copied);
            return false;
        }
        std::copy_n(other.params, other.paramCount, items);
    }
    text = copied;
    params = items;
    paramCount = other.paramCount;
    textHash = other.textHash;
    std::memcpy(prefix, other.prefix, prefixSize);
    self = other.self;
    marks = other.marks & ~uint(borrowed);
    refCount = 1;
    flags = other.flags;
    type = other.type;
    length = other.length;
    hash = other.hash;
    nameSel = other.nameSel;
    resultSel = other.resultSel;
    xmlName = other.xmlName;
    xmlSpace = other.xmlSpace;
    rootNameSel = other.rootNameSel;
    mainTypeSel = other.mainTypeSel;
    unqualifiedSel = other.unqualifiedSel;
    qualifierSel = other.qualifierSel;
    packageSel = other.packageSel;
    typeNameSel = other.typeNameSel;
    nameSpaceSel = other.nameSpaceSel;
    baseNameSel = other.baseNameSel;
    return true;
}

bool ZSelectorData::detach() {
    if (!(flags & Linked) && !(marks & borrowed)) return true;
    auto own = static_cast<char*>(__zalloc(length + size_t(1)));
    if (!own) return false;
    std::memcpy(own, text, length);
    own[length] = 0;
    text = own;
    flags &= ~uint(Linked);
    marks &= ~uint(borrowed);
    return true;
}

void ZSelectorData::setNone() {
    text = nullptr;
    length = paramCount = 0;
    params = sortedParams = nullptr;
    nameSel.forget();
    resultSel.forget();
    rootNameSel.forget();
    mainTypeSel.forget();
    unqualifiedSel.forget();
    qualifierSel.forget();
    packageSel.forget();
    typeNameSel.forget();
    nameSpaceSel.forget();
    baseNameSel.forget();
}

// Text from parts

namespace {
/// Writes text, or only measures it while there is no room.
struct TextSink {
    char* out = nullptr;
    size_t length = 0;

    void put(const char* text, size_t bytes) {
        if (out && bytes) std::memcpy(out + length, text, bytes);
        length += bytes;
    }
    void put(const char* text) { put(text, std::strlen(text)); }
    void put(const ZSelector& sel) { put(sel.string(), size_t(sel.length())); }
};

/// Empty items are left out, as they are when a text is taken apart. Answers the last one; null for none.
const ZSelector* putItems(TextSink& sink, const ZSelector* items, int count, const char* separator) {
    const ZSelector* last = nullptr;
    for (int i = 0; i < count; ++i) {
        if (items[i].isEmpty()) continue;
        if (last) sink.put(separator);
        last = items + i;
        sink.put(*last);
    }
    return last;
}

/// False for a type that isn't made of parts.
bool putText(TextSink& sink, const ZSelector& name, const ZSelector& result, const ZSelector* items, int count,
             ZSelector::Type type) {
    switch (type) {
    case ZSelector::Detect:
    case ZSelector::Names:
        putItems(sink, items, count, " ");
        return true;
    case ZSelector::UID:
        putItems(sink, items, count, ".");
        return true;
    case ZSelector::Colon:
        putItems(sink, items, count, ":");
        return true;
    case ZSelector::Types:
        putItems(sink, items, count, "::");
        return true;
    case ZSelector::Template: {
        sink.put(name);
        sink.put("<");
        const ZSelector* last = putItems(sink, items, count, ", ");
        sink.put(last && last->at(last->length() - 1) == '>' ? " >" : ">");
        return true;
    }
    case ZSelector::Method:
        if (!result.isEmpty()) {
            sink.put(result);
            sink.put(" ");
        }
        sink.put(name);
        sink.put("(");
        putItems(sink, items, count, ", ");
        sink.put(")");
        return true;
    default:
        return false;
    }
}
} // namespace

char* ZSelectorData::composeText(const ZSelector& name, const ZSelector& result, const ZSelector* items, int count,
                                 ZSelector::Type& type, size_t& length) {
    TextSink sink;
    if (count < 0 || (count && !items)) return nullptr;
    if (!putText(sink, name, result, items, count, type) || !sink.length) return nullptr;
    if (sink.length > size_t(ZSelector::longestText)) return nullptr;
    length = sink.length;
    sink = {static_cast<char*>(__zalloc(length + 1))};
    if (!sink.out) return nullptr;
    putText(sink, name, result, items, count, type);
    sink.out[length] = 0;
    bool single = std::count(items, items + count, ZSelector()) == count - 1 && type >= ZSelector::Names &&
                  type <= ZSelector::Colon;
    if (type == ZSelector::Detect || single) type = orv::detail::selectorType(sink.out, length);
    return sink.out;
}

bool ZSelectorData::resolveName() {
    ZSelector::Type made = type;
    size_t bytes;
    char* own = composeText(nameSel, resultSel, params, int(paramCount), made, bytes);
    if (!own) return false;
    if (!(flags & Linked) && !(marks & borrowed)) zfree(text);
    flags &= ~uint(Linked);
    marks &= ~uint(borrowed);
    text = own;
    length = uint(bytes);
    textHash = toolkit::hash64(own, bytes);
    hash = toolkit::limitHash(textHash, ZSelectorSpace::hashSize);
    bool anew = made != type;
    type = made;
    if (anew)
        resolveParams();
    else
        flags |= Parts;
    return true;
}

// Parts from text

int ZSelectorData::extractParams(const char* text, ZSelector::Type type, ZSelector& result, ZSelector& name,
                                 ZSelector*& params) {
    return extractParams(text, text ? std::strlen(text) : 0, type, result, name, params);
}

int ZSelectorData::extractParams(const char* text, size_t length, ZSelector::Type type, ZSelector& result,
                                 ZSelector& name, ZSelector*& params) {
    result = name = ZSelector();
    params = nullptr;
    if (!text || !length) return 0;
    auto intern = [](const SelectorPart& part, ZSelector& sel) {
        sel.set(part.text, int(part.length), ZSelector::Detect);
        return !sel.isEmpty() || !part.length;
    };
    SelectorItems counting(text, length, type);
    if (!intern(counting.name, name) || !intern(counting.result, result)) return -1;
    size_t count = 0;
    SelectorPart part;
    while (counting.next(part)) ++count;
    if (!count) return 0;
    params = zmakearray<ZSelector>(count);
    if (!params) return -1;
    SelectorItems items(text, length, type);
    for (size_t i = 0; i < count && items.next(part); ++i)
        if (!intern(part, params[i])) {
            zreleasearray(std::exchange(params, nullptr));
            return -1;
        }
    return int(count);
}

void ZSelectorData::resolveParams() {
    zreleasearray(params);
    zfree(zarrayblock(sortedParams));
    sortedParams = nullptr;
    int count = extractParams(text, length, type, resultSel, nameSel, params);
    paramCount = count < 0 ? 0 : uint(count);
    flags |= Parts;
}

const ZSelector* ZSelectorData::sorted() {
    if (ZSelector* there = loadAcquire(sortedParams)) return there;
    if (!params) return nullptr;
    ZSelector* made = zmakearray<ZSelector>(paramCount);
    if (!made) return nullptr;
    std::memcpy(static_cast<void*>(made), params, paramCount * sizeof(ZSelector));
    auto ids = reinterpret_cast<uint*>(made);
    std::sort(ids, ids + paramCount);
    {
        ZScopedLock held(orv::detail::selectorSpace.sortedLock());
        if (!sortedParams) {
            storeRelease(sortedParams, made);
            made = nullptr;
        }
    }
    zfree(zarrayblock(made));
    return loadAcquire(sortedParams);
}

bool ZSelectorData::containsSorted(const ZSelector& sel) {
    const ZSelector* all = sorted();
    if (!all) {
        // Without memory for the copy, the slow way.
        for (uint i = 0; i < paramCount; ++i)
            if (params[i] == sel) return true;
        return false;
    }
    uint key = sel.key(), low = 0, count = paramCount;
    while (count > 0) {
        uint half = count / 2;
        bool above = all[low + half].key() < key;
        low = above ? low + half + 1 : low;
        count = above ? count - half - 1 : half;
    }
    return low < paramCount && all[low].key() == key;
}

// The map's view of entries

int ZSelectorUser::comp(const ZRedBlackMap*, const void* left, const void* right) {
    auto& a = *static_cast<const ZSelectorData*>(left);
    auto& b = *static_cast<const ZSelectorData*>(right);
    if (a.length != b.length) return a.length < b.length ? -1 : 1;
    if (a.type != b.type) return a.type < b.type ? -1 : 1;
    return std::memcmp(a.text, b.text, a.length);
}
bool ZSelectorUser::copy(const ZRedBlackMap*, void* to, const void* from) {
    return (::new (to) ZSelectorData)->copy(*static_cast<const ZSelectorData*>(from));
}
void ZSelectorUser::destruct(const ZRedBlackMap*, void* entry) { static_cast<ZSelectorData*>(entry)->~ZSelectorData(); }
uint ZSelectorUser::hash(const ZRedBlackMap*, const void* entry, uint size) {
    return static_cast<const ZSelectorData*>(entry)->hash % size;
}
