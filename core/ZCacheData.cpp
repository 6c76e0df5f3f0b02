#include "core/ZCacheData.h"

#include "core/ZCoreLib.h"

namespace orv::detail {

/// Calls `load` for the four settings. A negative one counts as 0.
template <class F> static CacheOptions optionsFrom(F load) {
    int count, percent, items, cost;
    load(count, percent, items, cost);
    auto held = [](int value) { return value > 0 ? uint(value) : 0; };
    return {held(count), held(percent), held(items), held(cost)};
}

CacheOptions cacheOptions(const ZSelector& section, const ZSelector& key) {
    return optionsFrom([&](auto&... into) { return ZCoreLib::loadCacheOptions(section, key, into...); });
}
CacheOptions cacheOptions(const ZSelector& name) {
    return optionsFrom([&](auto&... into) { return ZCoreLib::loadCacheOptions(name, into...); });
}

} // namespace orv::detail
