#include "text/ZLongestCommonSubsequence.h"

#include "object/glue.h"
#include "text/ZString.h"

namespace orv::glue {

template <> struct Table<ZLongestCommonSubsequence> : Declares<ZLongestCommonSubsequence> {
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_METHOD(int, substitutionCost, (), const),
        ORV_METHOD(void, setSubstitutionCost, (int), ),
        ORV_METHOD(int, indelCost, (), const),
        ORV_METHOD(void, setIndelCost, (int), ),
        ORV_METHOD(large, longest, (const int*, const int*, large, large), const, "unsafe"),
        ORV_ADAPTER(large, longest, (const ZString&, const ZString&), const,
                    [](const Self& costs, const ZString& a, const ZString& b) {
                        return costs.longest(ZICharStr(a), ZICharStr(b));
                    }),
        ORV_METHOD(large, distance, (const int*, const int*, large, large), const, "unsafe"),
        ORV_ADAPTER(large, distance, (const ZString&, const ZString&), const,
                    [](const Self& costs, const ZString& a, const ZString& b) {
                        return costs.distance(ZICharStr(a), ZICharStr(b));
                    }),
    };
    static constexpr ClassInfo info = {.kind = Kind::Structure, .flags = typePublic};
};

} // namespace orv::glue

ORV_DECLARE(ZLongestCommonSubsequence);
