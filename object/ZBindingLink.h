#pragma once

#include "core/ZSelector.h"
#include "object/forward.h"
#include "value/ZVArray.h"

// Bindings as values: what a description holds, to be made between objects that are there later.

/// A pair of names and the directions in which they are bound. A name that is a path leads to an object and its method
/// or property.
class ORV_API ZBindingLink {
public:
    /// Two bits, one for each direction.
    enum Direction : int { Forward = 1, Backward = 2, Cross = 3 };

    ZBindingLink() = default;
    ZBindingLink(const ZSelector& source, const ZSelector& target, Direction direction = Forward)
        : sourceName(source), targetName(target), way(direction) {}

    // Setters answer false, with the value as it was, without memory and for what isn't allowed.

    const ZSelector& source() const { return sourceName; }
    bool setSource(const ZSelector& name);
    const ZSelector& target() const { return targetName; }
    bool setTarget(const ZSelector& name);
    Direction direction() const { return way; }
    bool setDirection(const Direction& direction);
    void assign(const ZBindingLink& other) { *this = other; }
    /// By all three.
    int compare(const ZBindingLink& other) const;
    bool operator==(const ZBindingLink& other) const { return compare(other) == 0; }
    uint hashKey() const { return sourceName.key() * 31 + targetName.key() * 7 + uint(way); }

    // Makes the bindings, or with `on` false removes them. Of two properties, the target's value becomes that of the
    // source first; with `Backward`, the other way round. False where an object isn't found; else true.

    /// Both paths begin at the object.
    bool bind(ZObject* object, bool on) const;
    bool bind(ZObject* src, ZObject* dst, bool on) const;
    /// The first part of a path is a name in the map; one that isn't there is looked for at `root`.
    bool bind(const ZVSelectMap& objects, const ZSelector& root, bool on) const;
    bool bind(ZObject* src, ZObject* dst, const ZSelector& srcName, const ZSelector& dstName,
              const ZSelector& srcQualifier, const ZSelector& dstQualifier, bool on) const;

    /// The object at the end of a path: each part is a property that holds an object, a member, or published under that
    /// name. The empty path is the root; null where it leads nowhere.
    static ZObject* findObject(ZObject* root, const ZSelector& path);
    /// The same from an object of a map: the first part of `path`, which is empty for `name`.
    static ZObject* findObject(const ZVSelectMap& objects, const ZSelector& name, const ZSelector& path);
    /// Takes a name apart: the path to the object, the name of the field there, the words behind a signature.
    static void normalize(const ZSelector& whole, ZSelector& path, ZSelector& name, ZSelector& qualifier);
    /// Exchanges source and target; with `turn`, the directions too, so that it means the same.
    void swapDirection(bool turn);

private:
    ZSelector sourceName, targetName;
    Direction way = Forward;
};

/// One line of a set of bindings: a change of the source calls the target, or a method of it, with fixed arguments.
class ORV_API ZBindingItem {
public:
    ZBindingItem() = default;

    /// The method of the target that a change calls with value and name, such as "change"; empty to set the target.
    const ZSelector& change() const { return changeName; }
    bool setChange(const ZSelector& name);
    const ZSelector& source() const { return sourceName; }
    bool setSource(const ZSelector& name);
    const ZSelector& target() const { return targetName; }
    bool setTarget(const ZSelector& name);
    /// How many arguments stand ahead of the fixed ones.
    int paramPos() const { return position; }
    bool setParamPos(const int& arguments);
    const ZVArray& param() const { return fixed; }
    bool setParam(const ZVArray& values);
    bool crossBind() const { return cross; }
    bool setCrossBind(const bool& on);
    void assign(const ZBindingItem& other) { *this = other; }
    int compare(const ZBindingItem& other) const;
    bool operator==(const ZBindingItem& other) const { return compare(other) == 0; }

    /// Without `change`.
    bool isEmpty() const { return changeName.isEmpty(); }
    /// Whether it has a change and a source alone.
    bool bindingLink() const {
        return !changeName.isEmpty() && !sourceName.isEmpty() && targetName.isEmpty() && fixed.isEmpty();
    }

    /// As those of `ZBindingLink`; true if a binding came to be, or went.
    bool bind(ZObject* object, bool on) const;
    bool bind(ZObject* src, ZObject* dst, bool on) const;
    bool bind(const ZVSelectMap& objects, const ZSelector& root, bool on) const;
    bool bind(ZObject* src, ZObject* dst, const ZSelector& srcName, const ZSelector& dstName,
              const ZSelector& srcQualifier, const ZSelector& dstQualifier, bool on) const;

private:
    ZSelector changeName, sourceName, targetName;
    ZVArray fixed;
    int position = 0;
    bool cross = false;
};

/// Items that are bound together, in order.
class ORV_API ZBindingSet {
public:
    ZBindingSet();

    /// The object of the map at which paths begin.
    const ZSelector& rootName() const { return root; }
    bool setRootName(const ZSelector& name);
    /// An array of `ZBindingItem`.
    const ZVArray& binding() const { return items; }
    bool setBinding(const ZVArray& values);
    bool addItem(const ZBindingItem& item);
    void assign(const ZBindingSet& other) { *this = other; }
    int compare(const ZBindingSet& other) const;
    bool operator==(const ZBindingSet& other) const { return compare(other) == 0; }

    /// Each item in turn, whatever it answers; always true.
    bool bind(ZObject* object, bool on) const;
    bool bind(ZObject* src, ZObject* dst, bool on) const;
    bool bind(const ZVSelectMap& objects, bool on) const;

private:
    template <class Call> bool each(Call call) const;

    ZSelector root;
    ZVArray items;
};
