#include "bench/object/peers.h"

#include <string>
#include <vector>

namespace {

const char* numbered(std::vector<std::string>& texts, const char* stem, int count, int index) {
    for (int i = int(texts.size()); i < count; ++i) texts.push_back(stem + std::to_string(i));
    return texts[size_t(index)].c_str();
}

} // namespace

const char* peers::typeName(int index) {
    static std::vector<std::string> texts;
    return numbered(texts, "DesignShape", typeCount, index);
}

const char* peers::childName(int index) {
    static std::vector<std::string> texts;
    return numbered(texts, "layer", childCount, index);
}

using Run = BenchPair::Run;

#ifndef ORV_PEER_QT
namespace peers::qt {
const Run propertyGet = nullptr, propertySet = nullptr, dynamicGet = nullptr, dynamicSet = nullptr, invoke = nullptr,
          typeFromName = nullptr, create = nullptr, childByName = nullptr, readAll = nullptr, enums = nullptr,
          copyInt = nullptr, copyText = nullptr, textToInt = nullptr, fire0 = nullptr, fire1 = nullptr,
          fire10 = nullptr, connect = nullptr;
} // namespace peers::qt
#endif
#ifndef ORV_PEER_RTTR
namespace peers::rttr {
const Run invoke = nullptr, cachedInvoke = nullptr, structGet = nullptr, structSet = nullptr;
} // namespace peers::rttr
#endif
#ifndef ORV_PEER_GOBJECT
namespace peers::gobject {
const Run typeFromName = nullptr;
} // namespace peers::gobject
#endif
