#include "text/ZCharBuffer.h"

#include "core/ZArrayT.h"
#include "core/ZSelector.h"
#include "object/glue.h"
#include "text/ZString.h"
#include "value/ZVArray.h"

namespace orv::glue {

template <> struct Table<ZCharBuffer> : Declares<ZCharBuffer> {
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_CONSTRUCTOR((int)),
        ORV_CONSTRUCTOR((const ZSelector&)),
        ORV_CONSTRUCTOR((const ZString&)),
        ORV_CONSTRUCTOR((const ZArrayT<int>&)),
        ORV_CONSTRUCTOR((const ZArrayT<float>&, int)),
        ORV_CONSTRUCTOR((const ZArrayT<real>&, int)),
        ORV_CONSTRUCTOR((const ZVArray&, int)),
        ORV_CONSTRUCTOR((const ZVArray&)),
        ORV_DESTRUCTOR(),
        ORV_METHOD(bool, initialize, (int), ),
        ORV_METHOD(int, dpos, (), const),
        ORV_METHOD(int, getSize, (), const),
        ORV_METHOD(bool, ended, (), const),
        ORV_METHOD(int, length, (), const),
        ORV_METHOD(void, setPos, (int), ),
        ORV_METHOD(void, advance, (int), ),
        ORV_METHOD(void, rewind, (int), ),
        ORV_METHOD(void, rewind, (), ),
        ORV_METHOD(int, getExpand, (), const),
        ORV_METHOD(void, setExpand, (int), ),
        ORV_METHOD(bool, expand, (int), ),
        ORV_METHOD(bool, add, (int), ),
        ORV_METHOD(bool, add, (const ZString&), ),
        ORV_METHOD(bool, addCode, (uint), ),
        ORV_METHOD(void, clear, (), ),
        ORV_METHOD(void, restart, (bool), ),
        ORV_METHOD(void, clearSpaces, (), ),
        ORV_METHOD(bool, addWithEscape, (const ZString&), ),
        ORV_METHOD(bool, addWithQuote, (const ZString&), ),
        ORV_METHOD(bool, addCSVString, (const ZString&), ),
        ORV_METHOD(bool, addSpecial, (const ZString&), ),
        ORV_STATIC(ZString, escapeStringRessource, (const ZString&, const ZString&)),
        ORV_METHOD(int, peek, (), const),
        ORV_METHOD(int, get, (), ),
        ORV_METHOD(void, skipSpaces, (), ),
        ORV_METHOD(void, skipSeparator, (), ),
        ORV_METHOD(bool, skipTo, (uint), ),
        ORV_METHOD(ZSelector, token, (int, bool), ),
        ORV_METHOD(ZSelector, token, (), ),
        ORV_METHOD(ZSelector, pureName, (), ),
        ORV_METHOD(ZString, separateString, (uint), ),
        ORV_METHOD(ZSelector, separateSelector, (uint), ),
        ORV_METHOD(ZString, stringTo, (uint, uint, bool&), ),
        ORV_METHOD(ZString, extract, (uint, uint), ),
        ORV_METHOD(ZSelector, extract, (ZString&, uint, uint, const ZString&), ),
        ORV_METHOD(bool, copyTillCode, (ZCharBuffer&, int), ),
        ORV_METHOD(ZString, parseXMLCharacters, (), ),
        ORV_METHOD(ZArrayT<int>, scanInt, (int), ),
        ORV_METHOD(ZArrayT<float>, scanFloat, (int), ),
        ORV_METHOD(ZArrayT<real>, scanReal, (int), ),
        ORV_METHOD(ZVArray, scanIntArray, (int), ),
        ORV_METHOD(ZVArray, scanFloatArray, (int), ),
        ORV_METHOD(ZVArray, scanRealArray, (int), ),
        ORV_METHOD(int, scanBlock, (), ),
        ORV_METHOD(ZString, string, (), const),
        ORV_METHOD(ZString, stringFromPos, (), const),
        ORV_METHOD(ZSelector, selector, (), const),
    };
    static constexpr ClassInfo info = {.kind = Kind::Structure, .flags = typePublic};
};

} // namespace orv::glue

ORV_DECLARE(ZCharBuffer);
