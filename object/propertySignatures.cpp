#include "object/propertySignatures.h"

#include "object/ZMetaType.h"
#include "object/ZProperty.h"
#include "object/ztype.h"

namespace {
/// Texts longer than this are built in a block.
constexpr size_t shortSignature = 384;

std::string_view textOf(const ZSelector& name) {
    return name.isEmpty() ? std::string_view() : std::string_view(name.string(), size_t(name.length()));
}

/// Writes a format into a buffer on the stack, or into a block where it is longer.
class SignatureText {
public:
    template <class... P> explicit SignatureText(std::string_view format, const P&... part) {
        const std::string_view parts[] = {std::string_view(part)...};
        length = orv::writeSignature(buffer, shortSignature, format, parts, int(sizeof...(P)));
        if (length <= shortSignature) return;
        block = static_cast<char*>(__zalloc(length));
        if (block)
            orv::writeSignature(block, length, format, parts, int(sizeof...(P)));
        else
            length = 0;
    }
    ~SignatureText() { zfree(block); }
    SignatureText(const SignatureText&) = delete;

    const char* data() const { return block ? block : buffer; }
    std::string_view view() const { return std::string_view(data(), length); }
    ZSelector selector() const { return length ? ZSelector(data(), int(length)) : ZSelector(); }

private:
    char buffer[shortSignature];
    char* block = nullptr;
    size_t length = 0;
};

/// As signatures spell it: a nested type behind its owner.
std::string_view nameOf(const ZMetaType* type) { return textOf(type->signatureName()); }
bool isPointerType(const ZMetaType* type) { return type->getPtrCount() >= 1; }
/// The format for a parameter of a type.
const char* byPointer(const ZMetaType* type, const char* plain, const char* pointer) {
    return isPointerType(type) ? pointer : plain;
}
/// The key parameter as a text, to be kept while it is used.
SignatureText keyText(const ZMetaType* index, bool collection, bool before, bool behind) {
    using namespace orv::signatures;
    static constexpr const char* keys[] = {keyOnly, keyFirst, keyLast, keyInner};
    static constexpr const char* positions[] = {positionOnly, positionFirst, positionLast, positionInner};
    int form = before * 2 + behind;
    if (index) return SignatureText(keys[form], nameOf(index));
    return SignatureText(collection ? positions[form] : "");
}
} // namespace

/// What an accessor gives or takes. A pointer type stays one; of an object that is held by its pointer it is the class.
ZMetaType* ZProperty::signatureType(bool item) const {
    if (item || resolved()) return itemType;
    ZMetaType* type = held.type();
    if (!type) return itemType;
    return type->getPtrCount() >= 1 && held.isNull() ? type : held.mainType();
}

ZSelector ZProperty::getter(bool ptrForm, bool constForm, bool item) const {
    using namespace orv::signatures;
    ZMetaType* type = signatureType(item);
    if (!type || selector.isEmpty() || (item && !collection())) return ZSelector();
    bool byValue =
        item || resolved() || (bits & (Value | Alias)) || type->primitive() || isPointerType(type) || type->isVariant();
    if (isPointerType(type)) ptrForm = false;
    SignatureText key = keyText(index, item && collection(), false, false);
    const char* format = ptrForm     ? (constForm ? getterConstPointer : getterPointer)
                         : byValue   ? getterValue
                         : constForm ? getterConstReference
                                     : getterReference;
    return SignatureText(format, nameOf(type), textOf(selector), item ? key.view() : "").selector();
}

ZSelector ZProperty::setter(bool item) const {
    using namespace orv::signatures;
    ZMetaType* type = resolved() ? ztype<ZVariant>() : signatureType(item);
    if (type && item && (bits & PassPtr) && !isPointerType(type)) type = type->getPtrType();
    if (!type || selector.isEmpty() || readOnly() || (item && !collection())) return ZSelector();
    SignatureText key = keyText(index, collection(), false, true);
    return SignatureText(byPointer(type, orv::signatures::setter, setterPointer), textOf(selector.capitalize()),
                         item ? key.view() : "", nameOf(type))
        .selector();
}

ZSelector ZProperty::counter() const {
    if (!collection() || !itemType || selector.isEmpty()) return ZSelector();
    return SignatureText(orv::signatures::counter, textOf(selector.capitalize())).selector();
}

ZSelector ZProperty::byindex() const {
    if (!itemType || selector.isEmpty()) return ZSelector();
    return SignatureText(orv::signatures::byIndex, nameOf(itemType), textOf(selector)).selector();
}

ZSelector ZProperty::hasProp() const {
    using namespace orv::signatures;
    if (!itemType || selector.isEmpty()) return ZSelector();
    return SignatureText(byPointer(itemType, orv::signatures::hasProp, hasPropPointer), textOf(selector.capitalize()),
                         nameOf(itemType))
        .selector();
}

ZSelector ZProperty::propKey() const {
    if (!index || selector.isEmpty()) return ZSelector();
    return SignatureText(orv::signatures::propKey, nameOf(index), textOf(selector)).selector();
}

ZSelector ZProperty::propIndex() const {
    if (!index || selector.isEmpty()) return ZSelector();
    return SignatureText(orv::signatures::propIndex, textOf(selector), nameOf(index)).selector();
}

ZSelector ZProperty::findKey() const {
    using namespace orv::signatures;
    if (!index || !itemType || selector.isEmpty()) return ZSelector();
    return SignatureText(byPointer(itemType, orv::signatures::findKey, findKeyPointer), nameOf(index),
                         textOf(selector.capitalize()), nameOf(itemType))
        .selector();
}

ZSelector ZProperty::findIndex() const {
    using namespace orv::signatures;
    if (!itemType || selector.isEmpty()) return ZSelector();
    return SignatureText(byPointer(itemType, orv::signatures::findIndex, findIndexPointer),
                         textOf(selector.capitalize()), nameOf(itemType))
        .selector();
}

ZSelector ZProperty::cleaner() const {
    if (selector.isEmpty()) return ZSelector();
    return SignatureText(orv::signatures::cleaner, textOf(selector.capitalize())).selector();
}

ZSelector ZProperty::remover() const {
    if (!collection() || selector.isEmpty()) return ZSelector();
    SignatureText key = keyText(index, true, false, false);
    return SignatureText(orv::signatures::remover, textOf(selector.capitalize()), key.view()).selector();
}

ZSelector ZProperty::removeByIndex() const {
    if (!collection() || selector.isEmpty()) return ZSelector();
    return SignatureText(orv::signatures::removeByIndex, textOf(selector.capitalize())).selector();
}

ZSelector ZProperty::inserter() const {
    using namespace orv::signatures;
    if (!collection() || !itemType || selector.isEmpty()) return ZSelector();
    SignatureText key = keyText(index, true, false, true);
    return SignatureText(byPointer(itemType, orv::signatures::inserter, inserterPointer), textOf(selector.capitalize()),
                         key.view(), nameOf(itemType))
        .selector();
}

ZSelector ZProperty::adder() const {
    using namespace orv::signatures;
    if (!(bits & Collection) || index || !itemType || selector.isEmpty()) return ZSelector();
    return SignatureText(byPointer(itemType, orv::signatures::adder, adderPointer), textOf(selector.capitalize()),
                         nameOf(itemType))
        .selector();
}

ZString ZProperty::getkey(bool commaBefore, bool commaBehind) const {
    SignatureText text = keyText(index, collection(), commaBefore, commaBehind);
    return ZString(text.data(), int(text.view().size()));
}
