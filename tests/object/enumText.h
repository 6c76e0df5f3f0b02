#pragma once

#include "object/ZEnum.h"
#include "tests/support/SelectorScope.h"

#include <string>

/// "a=1 b=2": what each value of an enumeration is called, in order.
inline std::string print(const ZEnum& data) {
    std::string all;
    for (uint i = 0; i < data.count(); ++i)
        all += (i ? " " : "") + text(data.nameAtIndex(int(i))) + "=" + std::to_string(data.valueAtIndex(int(i)));
    return all;
}
inline std::string join(const ZArrayT<ZSelector>& names) {
    std::string all;
    for (const ZSelector& name : names) all += (all.empty() ? "" : " ") + text(name);
    return all;
}
