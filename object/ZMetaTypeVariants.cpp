#include "object/ZMetaType.h"
#include "object/ZMethod.h"
#include "object/methodParams.h"
#include "object/propertyAccess.h"

// Values through accessor methods of a type, on instances that are what the method is called on.

namespace {

using orv::AccessorWord;

/// A value or key as the argument at a place of the method.
class Argument {
public:
    Argument(const ZMethod* method, int place, const ZVariant& value, const ZMetaType* type) {
        ok = orv::accessorWord(orv::writePlan(method, place, type), value, room, word);
    }
    Argument(const Argument&) = delete;

    ZVariant room;
    AccessorWord word{static_cast<const void*>(nullptr)};
    bool ok = false;
};

/// Whether the method has so many parameters: entries of others are of other function types.
bool takes(const ZMethod* method, const ZMetaType* type, int count) {
    const orv::MethodParams* params = method->params(type);
    return params && params->count == count + 1;
}

ZVariant readThrough(const ZMetaType* type, ZMethod* method, const void* instance, const AccessorWord* words,
                     int count) {
    ZVariant result;
    if (!takes(method, type, count)) return result;
    orv::callAccessor(method, instance, words, count, orv::readPlan(method, type), result);
    return result;
}

/// Calls a method that answers whether it did it; what answers nothing did.
bool writeThrough(const ZMetaType* type, ZMethod* method, const void* instance, const AccessorWord* words, int count) {
    int done = 0;
    if (!takes(method, type, count) || !orv::callForNumber(method, instance, words, count, done)) return false;
    return !method->hasReturn() || (done & 0xFF) != 0;
}

} // namespace

ZVariant ZMetaType::getVariant(ZMethod* method, const void* instance) const {
    if (!method || !instance) return ZVariant();
    toolkit::EpochGuard guard;
    return readThrough(this, method, instance, nullptr, 0);
}

ZVariant ZMetaType::getVariant(ZMethod* method, const void* instance, int key) const {
    if (!method || !instance) return ZVariant();
    toolkit::EpochGuard guard;
    orv::WritePlan plan = orv::writePlan(method, 1, this);
    if (!plan.number) return getVariant(method, instance, ZVariant(key));
    AccessorWord word(key);
    return readThrough(this, method, instance, &word, 1);
}

ZVariant ZMetaType::getVariant(ZMethod* method, const void* instance, const ZSelector& key) const {
    return getVariant(method, instance, ZVariant(key));
}

ZVariant ZMetaType::getVariant(ZMethod* method, const void* instance, const void* key) const {
    if (!method || !instance || !key) return ZVariant();
    toolkit::EpochGuard guard;
    orv::WritePlan plan = orv::writePlan(method, 1, this);
    if (!plan.usable || plan.number) return ZVariant();
    AccessorWord word(key);
    return readThrough(this, method, instance, &word, 1);
}

ZVariant ZMetaType::getVariant(ZMethod* method, const void* instance, const ZVariant& key) const {
    if (!method || !instance) return ZVariant();
    toolkit::EpochGuard guard;
    Argument argument(method, 1, key, this);
    return argument.ok ? readThrough(this, method, instance, &argument.word, 1) : ZVariant();
}

bool ZMetaType::setVariant(ZMethod* method, const void* instance, const ZVariant& value) const {
    if (!method || !instance) return false;
    toolkit::EpochGuard guard;
    Argument argument(method, 1, value, this);
    return argument.ok && writeThrough(this, method, instance, &argument.word, 1);
}

bool ZMetaType::setVariant(ZMethod* method, const void* instance, int key, const ZVariant& value) const {
    return setVariant(method, instance, ZVariant(key), value);
}

bool ZMetaType::setVariant(ZMethod* method, const void* instance, const ZSelector& key, const ZVariant& value) const {
    return setVariant(method, instance, ZVariant(key), value);
}

bool ZMetaType::setVariant(ZMethod* method, const void* instance, const ZVariant& key, const ZVariant& value) const {
    if (!method || !instance) return false;
    toolkit::EpochGuard guard;
    Argument first(method, 1, key, this), second(method, 2, value, this);
    if (!first.ok || !second.ok) return false;
    AccessorWord words[] = {first.word, second.word};
    return writeThrough(this, method, instance, words, 2);
}

int ZMetaType::findVariant(ZMethod* method, const void* instance, const ZVariant& value) const {
    if (!method || !instance) return -1;
    toolkit::EpochGuard guard;
    Argument argument(method, 1, value, this);
    int index = -1;
    const bool done = argument.ok && takes(method, this, 1);
    return done && orv::callForNumber(method, instance, &argument.word, 1, index) ? index : -1;
}
