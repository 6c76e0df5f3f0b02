#pragma once

#include "core/ZArrayT.h"
#include "core/ZListT.h"
#include "object/ZMetaType.h"
#include "object/ZMethod.h"
#include "object/ZMethodPtr.h"
#include "object/reflect.h"
#include "tests/support/CoreScope.h"
#include "text/ZString.h"
#include "toolkit/epoch.h"
#include "value/ZVArray.h"
#include "value/ZVariant.h"

/// Classes with methods of every kind, for the tests of lookups and calls.

/// A value that owns a counted block, of which the living ones are counted.
struct CallToken {
    ORV_REFLECT(CallToken);
    static inline int alive = 0;
    int number = 0;
    void* block = nullptr;

    CallToken() { take(); }
    explicit CallToken(int number) : number(number) { take(); }
    CallToken(const CallToken& other) : number(other.number) { take(); }
    ~CallToken() {
        --alive;
        zfree(block);
    }
    int get() const { return number; }
    int compare(const CallToken& other) const { return (number > other.number) - (number < other.number); }

private:
    void take() {
        ++alive;
        block = __zalloc(24);
        if (!block) ZError::fail();
    }
    char room[16] = {};
};

struct CallFirst {
    ORV_REFLECT(CallFirst);
    int one = 1;
    int first() const { return one; }
    int shadowed() const { return 10; }
};
struct CallSecond {
    ORV_REFLECT(CallSecond);
    int two = 2;
    CallSecond() = default;
    explicit CallSecond(int two) : two(two) {}
    int second() const { return two; }
    int secondPlus(int more) const { return two + more; }
    int shadowed() const { return 20; }
};

class CallShape : public CallFirst, public CallSecond {
public:
    ORV_REFLECT(CallShape);

    enum Step { First = 3, Second = 5 }; // no flags: they share a bit
    enum Mark { Red = 1, Green = 2, Blue = 8 };
    enum Small : byte { Low = 1, High = 6 };

    CallShape() = default;
    explicit CallShape(int value) : value(value) {}
    CallShape(int value, const ZString& text) : value(value), label(text) {}

    int plain() const { return value; }
    bool setPlain(int other) {
        value = other;
        return true;
    }
    int add(int a, int b) const { return a + b; }
    real add(real a, real b) const { return a + b; }
    ZString add(const ZString& a, const ZString& b) const {
        ZString sum(a);
        sum.append(b);
        return sum;
    }
    /// Every way of passing at once.
    ZString mixed(bool a, byte b, short c, large d, float e, const ZString& f, const ZSelector& g) const {
        ZString text;
        text.printf("%d %d %d %lld %g ", a, b, c, d, double(e));
        text.append(f);
        text.append(" ");
        text.append(g);
        return text;
    }
    float half(float a) const { return a / 2; }
    int length(const char* text) const { return text ? int(__builtin_strlen(text)) : -1; }
    int takes(const ZVariant& value) const { return value.toInt(); }
    bool changes(ZString& text) const { return text.append("!"); }
    const ZString& getLabel() const { return label; }
    const char* rawLabel() const { return "raw"; }
    CallToken token(int number) const { return CallToken(number); }
    int tokenNumber(const CallToken& token) const { return token.number; }
    int tokenPointer(const CallToken* token) const { return token ? token->number : -1; }
    bool movesPointer(const CallToken*& token) const {
        const bool had = token != nullptr;
        token = nullptr;
        return had;
    }
    int secondOf(const CallSecond& other) const { return other.two; }
    int count(int first, ZArrayT<ZVariant>& rest) const { return first * 100 + int(rest.count()); }
    int all(ZArrayT<ZVariant>& rest) const { return int(rest.count()); }
    int gather(const ZArrayT<ZVariant>& everything) const { return -int(everything.count()); }
    int gatherValues(const ZVArray& everything) const { return -100 - int(everything.count()); }
    int shadowed() const { return 30; }
    Step step() const { return now; }
    bool setStep(const Step& other) {
        now = other;
        return true;
    }
    int stepNumber(Step given) const { return given; }
    int marks(Mark given) const { return given; }
    int small(Small given) const { return given; }
    void nothing() const { ++calls; }
    static int twice(int a) { return 2 * a; }

    static inline int calls = 0;
    int value = 7;
    Step now = First;
    ZString label{"label"};

private:
    int hidden() const { return 99; }
};

/// The library is up and the shapes are declared in a package of their own.
class MethodTest : public CoreTest {
protected:
    static void SetUpTestSuite();
    static void TearDownTestSuite();

    static ZMetaType* shape();
    static ZMetaType* type(const char* name) { return ZMetaType::find(ZSelector(name)); }
    template <class... A> static ZArrayT<ZVariant> list(const A&... values) {
        ZArrayT<ZVariant> made;
        (made.append(ZVariant(values)), ...);
        return made;
    }
    /// A new method of a signature, released with the guard of the test.
    static ZMethodPtr method(const char* signature, const char* qualifier = "") {
        return ZMethodPtr(ZSelector(signature), ZSelector(qualifier));
    }
};
