#include "text/ZRegExp.h"

#include "core/ZSelector.h"
#include "object/glue.h"

namespace orv::glue {

template <> struct Table<ZRegExp> : Declares<ZRegExp> {
    using BaseTypes = Bases<ZString>;
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_CONSTRUCTOR((const ZString&, ZRegExp::Flags)),
        ORV_CONSTRUCTOR((const ZRegExp&)),
        ORV_DESTRUCTOR(),
        ORV_METHOD(bool, setPattern, (const ZString&), ),
        ORV_METHOD(bool, setPattern, (const ZString&, ZRegExp::Flags), ),
        ORV_METHOD(ZString, pattern, (), const),
        ORV_METHOD(ZRegExp::Flags, getFlags, (), const),
        ORV_METHOD(bool, isEmpty, (), const),
        ORV_METHOD(ZString::Type, getCharType, (), const),
        ORV_METHOD(bool, setCharType, (ZString::Type), ),
        ORV_METHOD(bool, reset, (), ),
        ORV_METHOD(bool, reset, (int), ),
        ORV_METHOD(void, clear, (), ),
        ORV_METHOD(bool, match, (const ZString&, bool), const),
        ORV_METHOD(bool, match, (const ZSelector&, bool), const),
        ORV_METHOD(int, check, (const ZString&, bool), const),
        ORV_METHOD(int, find, (const ZString&, bool, int), const),
        ORV_METHOD(int, find, (const ZString&, bool, int, int&), const),
        ORV_METHOD(int, timeLimit, (), const),
        ORV_METHOD(void, setTimeLimit, (int), ),
        ORV_METHOD(bool, gaveUp, (), const),
        ORV_METHOD(int, errorPosition, (), const),
        ORV_METHOD(ZString, errorText, (), const),
        ORV_METHOD(int, root, (), const),
        ORV_METHOD(int, countNodes, (), const),
        ORV_METHOD(int, child, (int), const),
        ORV_METHOD(int, next, (int), const),
        ORV_METHOD(int, parent, (int), const),
        ORV_METHOD(int, depth, (int), const),
        ORV_METHOD(int, label, (int), const),
        ORV_METHOD(ZString, name, (int), const),
        ORV_METHOD(int, findLabel, (int, int), const),
        ORV_METHOD(int, findName, (int, const ZString&), const),
        ORV_METHOD(ZString, text, (int), const),
        ORV_METHOD(ZRegExp, extract, (int), const),
        ORV_METHOD(int, compare, (const ZRegExp&), const),
    };
    static constexpr EnumItemRow flagsItems[] = {ORV_ITEM(Flags, None), ORV_ITEM(Flags, DefGroup),
                                                 ORV_ITEM(Flags, UCDGroup)};
    static constexpr EnumRow enums[] = {ORV_ENUM(Flags, flagsItems)};
    static constexpr ClassInfo info = {.kind = Kind::Structure, .flags = typePublic};
};

} // namespace orv::glue

ORV_DECLARE(ZRegExp);
