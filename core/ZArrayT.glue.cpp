#include "core/ZArrayT.h"

#include "core/ZSelector.h"
#include "object/ZEnum.h"
#include "object/ZMetaType.h"
#include "object/glue.h"
#include "text/ZFileInfo.h"
#include "text/ZString.h"
#include "value/ZVariant.h"

namespace orv::glue {

template <class T> struct Table<ZArrayT<T>> : Declares<ZArrayT<T>> {
    using Self = ZArrayT<T>;
    /// How an item is passed.
    using Item = std::conditional_t<std::is_pointer_v<T>, T, const T&>;
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_CONSTRUCTOR((const Self&)),
        ORV_DESTRUCTOR(),
        ORV_TYPED_METHOD(uint, count, (), const),
        ORV_TYPED_METHOD(bool, isEmpty, (), const),
        // Out of range the item is a new value: a name has no way to ask first.
        ORV_ADAPTER(T, get, (uint), const,
                    [](const Self& array, uint index) { return index < array.count() ? array[index] : T(); }),
        ORV_ADAPTER(bool, set, (uint, Item), ,
                    [](Self& array, uint index, Item item) { return array.set(index, item); }),
        ORV_ADAPTER(bool, append, (Item), , [](Self& array, Item item) { return array.append(item); }),
        ORV_TYPED_METHOD(bool, append, (const Self&), ),
        ORV_ADAPTER(bool, insert, (uint, Item), ,
                    [](Self& array, uint index, Item item) { return array.insert(index, item); }),
        ORV_TYPED_METHOD(bool, remove, (uint, uint), ),
        ORV_TYPED_METHOD(bool, setCount, (uint), ),
        ORV_TYPED_METHOD(void, clear, (), ),
        ORV_ADAPTER(bool, contains, (Item), const, [](const Self& array, Item item) { return array.contains(item); }),
        ORV_ADAPTER(int, indexOf, (Item, uint), const,
                    [](const Self& array, Item item, uint start) { return array.indexOf(item, start); }),
        ORV_TYPED_METHOD(int, compare, (const Self&), const),
        ORV_TYPED_METHOD(bool, isDetached, (), const),
        ORV_TYPED_METHOD(bool, detach, (), ),
    };
    static constexpr ClassInfo info = {.kind = Kind::Structure, .flags = typePublic};
};

} // namespace orv::glue

ORV_DECLARE(ZArrayT<bool>);
ORV_DECLARE(ZArrayT<byte>);
ORV_DECLARE(ZArrayT<int>);
ORV_DECLARE(ZArrayT<uint>);
ORV_DECLARE(ZArrayT<large>);
ORV_DECLARE(ZArrayT<float>);
ORV_DECLARE(ZArrayT<real>);
ORV_DECLARE(ZArrayT<ZSelector>);
ORV_DECLARE(ZArrayT<ZString>);
ORV_DECLARE(ZArrayT<ZFileInfo>);
ORV_DECLARE(ZArrayT<ZVariant>);
ORV_DECLARE(ZArrayT<ZMetaType*>);
ORV_DECLARE(ZArrayT<ZEnumItem>);
