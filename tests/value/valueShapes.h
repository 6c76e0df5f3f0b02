#pragma once

#include "object/reflect.h"
#include "tests/support/CoreScope.h"
#include "value/ZVArray.h"
#include "value/ZVSelectMap.h"
#include "value/ZVariant.h"

/// Plain structures with declared properties, for the tests of values: a small one that variants hold themselves, and a
/// large one with parts.

struct ValuePoint {
    ORV_REFLECT(ValuePoint);
    int x() const { return first; }
    int y() const { return second; }
    bool setX(const int& value) {
        first = value;
        return true;
    }
    bool setY(const int& value) {
        second = value;
        return true;
    }
    int sum() const { return first + second; }
    bool move(int by) {
        first += by;
        return true;
    }
    int compare(const ValuePoint& other) const { return (first > other.first) - (first < other.first); }
    uint hashKey() const { return uint(first); }

    int first = 1, second = 2;
};

struct ValueShape {
    ORV_REFLECT(ValueShape);
    const ValuePoint& place() const { return point; }
    bool setPlace(const ValuePoint& value) {
        point = value;
        return true;
    }
    const ZString& label() const { return text; }
    bool setLabel(const ZString& value) { return text.assign(value); }
    const ZVArray& items() const { return list; }
    bool setItems(const ZVArray& value) {
        list = value;
        return true;
    }
    const ZVSelectMap& named() const { return map; }
    bool setNamed(const ZVSelectMap& value) {
        map = value;
        return true;
    }
    int total() const { return point.sum(); }

    ValuePoint point;
    ZString text;
    ZVArray list;
    ZVSelectMap map;
};

/// A point that isn't at the start of its instance.
struct ValueMark {
    ORV_REFLECT(ValueMark);
    int mark() const { return number; }

    int number = 77;
};
struct ValuePin : ValueMark, ValuePoint {
    ORV_REFLECT(ValuePin);
};

/// The library is up, and the structures are declared.
class ShapeTest : public CoreTest {
protected:
    static void SetUpTestSuite();
};
