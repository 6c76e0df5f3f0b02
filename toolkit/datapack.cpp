#include "toolkit/datapack.h"

#include "toolkit/rbtree.h"

#include <cstring>
#include <new>

namespace toolkit {

namespace {
/// The first head of a chunk stands here, so that contents behind the 20 bytes of a head are aligned to 8.
constexpr size_t chunkStart = 4;
constexpr size_t roundUp(size_t bytes) { return (bytes + 7) & ~size_t(7); }
} // namespace

struct DataPack::Links {
    const DataPack& pack;
    uint32_t tree;

    PackLinks& of(uint32_t id) const { return pack.links(tree, id); }
    uint32_t& parent(uint32_t id) const { return of(id).parent; }
    uint32_t& child(uint32_t id, int side) const { return side ? of(id).right : of(id).left; }
    bool red(uint32_t id) const { return of(id).place & PackLinks::redBit; }
    void setRed(uint32_t id, bool on) const {
        uint32_t& place = of(id).place;
        place = on ? place | PackLinks::redBit : place & ~PackLinks::redBit;
    }
};

DataPack* DataPack::make(uint32_t trees, size_t entrySize, uint32_t growth) {
    constexpr size_t entryRoom = size_t(1) << 28;
    constexpr uint32_t mostTrees = 256, mostBits = 24;
    if (trees < 1 || trees > mostTrees || entrySize > entryRoom) return nullptr;
    void* memory = allocZeroedBlock(sizeof(DataPack) + trees * sizeof(Table));
    if (!memory) return nullptr;
    auto pack = ::new (memory) DataPack();
    pack->treeCount = trees;
    pack->size = entrySize;
    pack->linksAt = roundUp(sizeof(PackEntry) + entrySize);
    pack->stride = roundUp(pack->linksAt + (trees - 1) * sizeof(PackLinks));
    while (pack->shift < mostBits && (1u << pack->shift) < growth) ++pack->shift;
    for (uint32_t i = 0; i < trees; ++i) pack->table(i) = {nullptr, 1, 0};
    return pack;
}

void DataPack::destructAll(void (*destruct)(const void*, void*), const void* context) {
    if (!destruct) return;
    for (uint32_t id = 1; id <= used; ++id)
        if (void* contents = entry(id)) destruct(context, contents);
}

void DataPack::freeAll() {
    for (uint32_t i = 0; i < chunks; ++i) freeBlock(directory[1 + i] - chunkStart);
    for (byte** each = directory; each;) {
        auto older = reinterpret_cast<byte**>(each[0]);
        freeBlock(each);
        each = older;
    }
    for (uint32_t i = 0; i < treeCount; ++i) freeBlock(table(i).roots);
    freeBlock(this);
}

void DataPack::release(DataPack* pack, void (*destruct)(const void*, void*), const void* context) {
    if (!pack || decrement(blockHead(pack)->count) > 0) return;
    pack->destructAll(destruct, context);
    pack->freeAll();
}

bool DataPack::growDirectory() {
    uint32_t room = directoryRoom ? 2 * directoryRoom : 8;
    auto grown = static_cast<byte**>(allocZeroedBlock((size_t(room) + 1) * sizeof(byte*)));
    if (!grown) return false;
    if (chunks) std::memcpy(grown + 1, directory + 1, chunks * sizeof(byte*));
    grown[0] = reinterpret_cast<byte*>(directory);
    storeRelease(directory, grown);
    directoryRoom = room;
    return true;
}

bool DataPack::addChunk() {
    if (chunks == directoryRoom && !growDirectory()) return false;
    // Not zeroed: pages that no entry uses are never touched.
    auto chunk = static_cast<byte*>(allocBlock(chunkStart + (stride << shift)));
    if (!chunk) return false;
    directory[1 + chunks++] = chunk + chunkStart;
    return true;
}

bool DataPack::reserve(uint32_t more) {
    // Free entries below `used` count as room.
    uint64_t wanted = uint64_t(live) + more;
    if (wanted > entryLimit) return false;
    while ((uint64_t(chunks) << shift) < wanted)
        if (!addChunk()) return false;
    return true;
}

uint32_t DataPack::create() {
    uint32_t id = firstFree;
    if (id) {
        PackEntry* head = at(id);
        firstFree = head->links.parent;
        std::memset(&head->links, 0, stride - offsetof(PackEntry, links));
        storeRelease(head->free, byte(0));
    } else {
        if (used >= entryLimit) return 0;
        if (used >= uint64_t(chunks) << shift && !addChunk()) return 0;
        id = used + 1;
        std::memset(static_cast<void*>(at(id)), 0, stride);
        storeRelease(used, id);
    }
    store(live, live + 1);
    return id;
}

void* DataPack::retire(uint32_t id) {
    void* contents = entry(id);
    if (!contents) return nullptr;
    for (uint32_t tree = 0; tree < treeCount; ++tree) unlink(tree, id);
    storeRelease(at(id)->free, byte(1));
    store(live, live - 1);
    return contents;
}

void DataPack::recycle(uint32_t id) {
    at(id)->links.parent = firstFree;
    firstFree = id;
}

bool DataPack::setTree(uint32_t tree, uint32_t buckets, uint32_t flags) {
    if (tree >= treeCount || buckets > bucketLimit || table(tree).roots) return false;
    table(tree) = {nullptr, buckets ? buckets : 1, flags};
    return true;
}

bool DataPack::linked(uint32_t tree, uint32_t id) const {
    return tree < treeCount && valid(id) && (links(tree, id).place & PackLinks::linkedBit);
}

bool DataPack::link(uint32_t tree, uint32_t id, uint32_t bucket, PackCompare compare) {
    if (tree >= treeCount || !valid(id)) return false;
    if (links(tree, id).place & PackLinks::linkedBit) return true;
    Table& into = table(tree);
    if (!into.roots) {
        into.roots = static_cast<uint32_t*>(allocZeroedBlock(into.buckets * sizeof(uint32_t)));
        if (!into.roots) return false;
    }
    bucket %= into.buckets;
    uint32_t up = 0;
    int side = 0;
    for (uint32_t down = into.roots[bucket]; down; down = side ? links(tree, up).right : links(tree, up).left) {
        up = down;
        side = compare.call(compare.context, entry(id), entry(up)) > 0;
    }
    links(tree, id).place = PackLinks::linkedBit | bucket;
    Links access{*this, tree};
    treeInsert(access, into.roots[bucket], id, up, side);
    return true;
}

void DataPack::unlink(uint32_t tree, uint32_t id) {
    if (!linked(tree, id)) return;
    PackLinks& own = links(tree, id);
    Links access{*this, tree};
    treeRemove(access, table(tree).roots[own.place & PackLinks::bucketMask], id);
    own = {};
}

uint32_t DataPack::find(uint32_t tree, uint32_t bucket, const void* key, PackCompare compare) const {
    if (tree >= treeCount || !table(tree).roots) return 0;
    uint32_t id = table(tree).roots[bucket % table(tree).buckets];
    while (id) {
        int order = compare.call(compare.context, entry(id), key);
        if (order == 0) break;
        const PackLinks& own = links(tree, id);
        id = order < 0 ? own.right : own.left;
    }
    return id;
}

uint32_t DataPack::depth(uint32_t tree, uint32_t bucket) const {
    if (tree >= treeCount || !table(tree).roots || bucket >= table(tree).buckets) return 0;
    uint32_t deepest = 0, level = 0, from = 0, id = table(tree).roots[bucket];
    while (id) { // a walk that remembers only where it came from
        const PackLinks& own = links(tree, id);
        uint32_t next;
        if (from == own.parent) {
            if (++level > deepest) deepest = level;
            next = own.left ? own.left : own.right ? own.right : own.parent;
        } else
            next = from == own.left && own.right ? own.right : own.parent;
        if (next == own.parent) --level;
        from = id;
        id = next;
    }
    return deepest;
}

DataPack* DataPack::cloneEmpty() const {
    DataPack* made = make(treeCount, size, 1u << shift);
    for (uint32_t i = 0; made && i < treeCount; ++i) made->table(i) = {nullptr, table(i).buckets, table(i).flags};
    return made;
}

DataPack* DataPack::clone(bool (*copy)(const void*, void*, const void*), void (*destruct)(const void*, void*),
                          const void* context) const {
    DataPack* made = cloneEmpty();
    if (!made) return nullptr;
    bool whole = true;
    for (uint32_t i = 0; i < treeCount && whole; ++i) {
        if (!table(i).roots) continue;
        Table& to = made->table(i);
        size_t bytes = to.buckets * sizeof(uint32_t);
        to.roots = static_cast<uint32_t*>(allocBlock(bytes));
        whole = to.roots != nullptr;
        if (whole) std::memcpy(to.roots, table(i).roots, bytes);
    }
    while (whole && made->chunks < chunks) whole = made->addChunk();
    for (uint32_t id = 1; id <= used && whole; ++id) {
        PackEntry *to = made->at(id), *from = at(id);
        std::memcpy(static_cast<void*>(to), from, stride);
        if (!from->free) {
            std::memset(static_cast<void*>(to + 1), 0, size);
            whole = copy(context, to + 1, from + 1);
            if (!whole) break;
            ++made->live;
        }
        made->used = id;
    }
    if (!whole) {
        made->destructAll(destruct, context);
        made->freeAll();
        return nullptr;
    }
    made->firstFree = firstFree;
    return made;
}

} // namespace toolkit
