#include "object/primitives.h"

#include "toolkit/types.h"

namespace orv::glue {

namespace {

constexpr ClassInfo infoOf(Kind kind) {
    ClassInfo info;
    info.kind = kind;
    info.flags = typePublic;
    return info;
}
constexpr ClassInfo infos[] = {
    infoOf(Kind::Unknown), infoOf(Kind::Void), infoOf(Kind::Bool),  infoOf(Kind::Char),   infoOf(Kind::Byte),
    infoOf(Kind::Short),   infoOf(Kind::Word), infoOf(Kind::Int),   infoOf(Kind::UInt),   infoOf(Kind::Large),
    infoOf(Kind::ULarge),  infoOf(Kind::Enum), infoOf(Kind::Float), infoOf(Kind::Double), infoOf(Kind::Real),
};
constexpr ClassInfo templateInfo = infoOf(Kind::Class);
/// What a metatype does by kind alone.
constexpr Callbacks byKind{};

constexpr ClassRow row(const char* name, Kind kind, uint size) {
    ClassRow made{};
    made.name = name;
    made.size = size;
    made.alignment = size ? size : 1;
    made.info = kind == Kind::Class ? &templateInfo : &infos[int(kind)];
    made.callbacks = &byKind;
    return made;
}
template <class T> constexpr ClassRow row(const char* name, Kind kind) { return row(name, kind, sizeof(T)); }

constexpr ClassRow rows[] = {
    row("void", Kind::Void, 0),           row<bool>("bool", Kind::Bool),
    row<char>("char", Kind::Char),        row<int8>("int8", Kind::Char),
    row<byte>("byte", Kind::Byte),        row<short>("short", Kind::Short),
    row<int16>("int16", Kind::Short),     row<word>("word", Kind::Word),
    row<wchar>("wchar", Kind::Word),      row<int>("int", Kind::Int),
    row<uint>("uint", Kind::UInt),        row<ichar>("ichar", Kind::UInt),
    row<large>("large", Kind::Large),     row<ularge>("ularge", Kind::ULarge),
    row<long>("long", Kind::Large),       row<unsigned long>("ulong", Kind::ULarge),
    row<float>("float", Kind::Float),     row<double>("double", Kind::Double),
    row<real>("real", Kind::Real),        row("ZArrayT", Kind::Class, 0),
    row("ZCacheT", Kind::Class, 0),       row("ZHashMapT", Kind::Class, 0),
    row("ZHashSetT", Kind::Class, 0),     row("ZHashTreeT", Kind::Class, 0),
    row("ZKeyMapT", Kind::Class, 0),      row("ZKeyValueT", Kind::Class, 0),
    row("ZListT", Kind::Class, 0),        row("ZPairT", Kind::Class, 0),
    row("ZQueueT", Kind::Class, 0),       row("ZRetainKeyT", Kind::Class, 0),
    row("ZRetainPtrT", Kind::Class, 0),   row("ZSelectMapT", Kind::Class, 0),
    row("ZSelectValueT", Kind::Class, 0), row("ZSlotT", Kind::Class, 0),
    row("ZStackT", Kind::Class, 0),       row("ZTreeItemT", Kind::Class, 0),
    row("ZTreeT", Kind::Class, 0),        row("ZValueKeyT", Kind::Class, 0),
    row("ZVectorT", Kind::Class, 0),      row("ZWrapPtrT", Kind::Class, 0),
};

} // namespace

const List<ClassRow> primitiveRows{rows};

} // namespace orv::glue
