#pragma once

#include "object/ZMetaTypeData.h"

#include <initializer_list>

/// Metatypes made by hand, without a package: held by the test that makes them.
using TypePtr = ZRetainPtrT<ZMetaType>;

inline TypePtr makeType(const char* name, ZMetaType::Type kind = ZMetaType::Class,
                        std::initializer_list<ZMetaType*> bases = {}) {
    ZArrayT<ZMetaType*> list;
    for (ZMetaType* base : bases) list.append(base);
    return TypePtr::adopt(zmake<ZMetaType>(nullptr, ZSelector(name), kind, list));
}
inline TypePtr makeSized(const char* name, ZMetaType::Type kind, uint size) {
    TypePtr type = makeType(name, kind);
    type->setSize(size);
    return type;
}
/// A callback as the table stores it.
template <class F> ZTypeCallback asCallback(F* function) { return reinterpret_cast<ZTypeCallback>(function); }
/// Gives up what a type has worked out, which is no leak, for whoever counts blocks.
inline void forgetLists(std::initializer_list<ZMetaType*> types) {
    for (ZMetaType* type : types) orv::retireAncestors(type->record().ancestors.publish(nullptr));
    toolkit::epochDrain();
}
