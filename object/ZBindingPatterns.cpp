#include "object/ZBinding.h"
#include "object/bindingEnds.h"
#include "text/ZRegExp.h"

// Bindings of all methods whose names patterns match.

namespace {

/// The names of an object's methods that a pattern matches; false without memory. Matching may take its time, so no
/// guard is open meanwhile.
bool matching(ZObject* object, const ZRegExp& pattern, ZArrayT<ZSelector>& found) {
    ZHashSetT<ZSelector> names;
    if (!object || !orv::methodNames(object, names)) return false;
    for (const ZSelector& name : std::as_const(names))
        if (pattern.match(name) && !found.append(name)) return false;
    return true;
}

/// Calls `use` for each pair of names.
template <class F> void eachMatch(ZObject* src, ZObject* dst, const ZRegExp& srcNames, const ZRegExp& dstNames, F use) {
    ZArrayT<ZSelector> from, to;
    if (!matching(src, srcNames, from) || !matching(dst, dstNames, to)) return;
    for (const ZSelector& source : std::as_const(from))
        for (const ZSelector& destination : std::as_const(to)) use(source, destination);
}

} // namespace

int ZBinding::bind(ZObject* src, ZObject* dst, const ZRegExp& srcNames, const ZRegExp& dstNames) {
    int last = -1;
    eachMatch(src, dst, srcNames, dstNames, [&](const ZSelector& source, const ZSelector& destination) {
        const int made = bindmethod(src, dst, source, destination, {}, {}, true);
        if (made >= 0) last = made;
    });
    return last;
}
bool ZBinding::unbind(ZObject* src, ZObject* dst, const ZRegExp& srcNames, const ZRegExp& dstNames) {
    bool any = false;
    eachMatch(src, dst, srcNames, dstNames, [&](const ZSelector& source, const ZSelector& destination) {
        any |= unbindmethod(src, dst, source, destination, {}, {});
    });
    return any;
}
