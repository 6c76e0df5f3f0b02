#include "value/ZTypedPtr.h"

#include "object/ZMetaType.h"
#include "object/ZProperty.h"
#include "value/plainProperties.h"
#include "value/typedInstance.h"

using namespace orv;
using detail::instanceOf;

namespace {

/// Sets `typed` to what has the property of that name.
void locate(const ZTypedPtr& at, ZTypedPtr* typed, const ZSelector& name) {
    if (typed) at.findProperty(typed, name, false);
}

/// Looks an accessor up from `at` and gives its place.
template <class F> ZMethod* accessor(const ZTypedPtr& at, ZTypedPtr* typed, F&& find) {
    ZTypedPtr place(at);
    ZMethod* method = find(&place);
    if (method && typed) *typed = place;
    return method;
}

} // namespace

#define ORV_BARE(...) __VA_ARGS__
#define ORV_OPERATION(none, result, operation, parameters, arguments, ...)                                             \
    result ZTypedPtr::operation parameters const {                                                                     \
        if (ZType* object = instanceOf(*this)) return object->operation arguments;                                     \
        if (!type) return none;                                                                                        \
        return __VA_ARGS__;                                                                                            \
    }
#define ORV_SECOND_FORM(result, operation, parameters, arguments)                                                      \
    result ZTypedPtr::operation(ZTypedPtr* typed, ORV_BARE parameters) const {                                         \
        locate(*this, typed, name);                                                                                    \
        return operation arguments;                                                                                    \
    }

#define ORV_ASK(listing, ...) ORV_OPERATION({}, __VA_ARGS__)
#define ORV_CHANGE(listing, ...) ORV_OPERATION({}, __VA_ARGS__)
#define ORV_FIND(listing, ...) ORV_OPERATION(-1, __VA_ARGS__)
#define ORV_TELL(listing, result, operation, parameters, arguments)                                                    \
    result ZTypedPtr::operation parameters const {                                                                     \
        if (ZType* object = instanceOf(*this)) object->operation arguments;                                            \
    }
#define ORV_ASK_AT(listing, result, operation, parameters, arguments, ...)                                             \
    ORV_ASK(listing, result, operation, parameters, arguments, __VA_ARGS__)                                            \
    ORV_SECOND_FORM(result, operation, parameters, arguments)
#define ORV_CHANGE_AT ORV_ASK_AT
#define ORV_FIND_AT(listing, result, operation, parameters, arguments, ...)                                            \
    ORV_FIND(listing, result, operation, parameters, arguments, __VA_ARGS__)                                           \
    ORV_SECOND_FORM(result, operation, parameters, arguments)
#define ORV_TELL_AT(listing, result, operation, parameters, arguments)                                                 \
    ORV_TELL(listing, result, operation, parameters, arguments)                                                        \
    ORV_SECOND_FORM(result, operation, parameters, arguments)
#include "value/valueProperties.def"
