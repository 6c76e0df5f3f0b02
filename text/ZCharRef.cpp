#include "text/ZCharRef.h"

#include "text/ZString.h"

ZChar::ZChar(const ZCharRef& place) : ZChar(place.value()) {}

ZCharRef& ZCharRef::operator=(const ZChar& value) {
    if (!string || index < 0) return *this;
    bool room = index < string->length() || (index < 0x7FFFFFFF && string->setLength(index + 1));
    if (!room || !string->set(index, value.value())) ZError::fail();
    return *this;
}

ZChar ZCharRef::value() const { return string ? string->at(index) : ZChar(); }
ZString ZCharRef::name() const { return value().name(); }
bool ZCharRef::detach() const { return !string || string->detach(); }
bool ZCharRef::isDetached() const { return !string || string->isDetached(); }
