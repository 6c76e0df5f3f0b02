#include "gauge.h"

#include <object/ztype.h>

Gauge::Gauge(const __ZPassMetaType* type, ZInternal* internal) : ZObject(orv::tagFor<Gauge>(type), internal) {}

bool Gauge::setLevel(const int& value) {
    filled = value;
    now = value > 100 ? Alarm : value > 0 ? Running : Idle;
    return true;
}
bool Gauge::setState(const State& value) {
    now = value;
    return true;
}
