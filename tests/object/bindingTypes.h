#pragma once

#include "core/construct.h"
#include "object/ZMetaType.h"
#include "object/ZMethodBindings.h"
#include "object/reflect.h"
#include "object/ztype.h"
#include "tests/support/CoreScope.h"
#include "text/ZString.h"

#include <atomic>
#include <functional>
#include <string>

/// A class with signals, with methods that tell of their calls, and with a property.
class Bell : public ZObject {
public:
    ORV_REFLECT(Bell);
    explicit Bell(const __ZPassMetaType* tag = nullptr, ZInternal* internal = nullptr)
        : ZObject(tag ? tag : orv::passType(ztype<Bell>()), internal) {}
    Bell(const Bell* source, const __ZPassMetaType* tag = nullptr, ZInternal* internal = nullptr)
        : ZObject(source, tag ? tag : orv::passType(ztype<Bell>()), internal) {}
    ~Bell() override { ++ended; }
    /// With a name.
    static Bell* make(const char* name) {
        Bell* made = zmake<Bell>();
        if (made) made->setSelector(name);
        return made;
    }

    int width() const { return toolkit::load(w); }
    bool setWidth(const int& value) {
        toolkit::store(w, value);
        return value >= 0;
    }
    // Signals

    void struck() {}
    void moved(int, const ZString&) {}
    int asked() { return 0; }
    ZString named() { return {}; }
    Bell* found() { return nullptr; }

    // Destinations

    void ring() { tell("ring"); }
    void hear(int value) { tell("hear " + std::to_string(value)); }
    void hear(const ZString& text) { tell("text " + std::to_string(text.length())); }
    void both(int value, const ZString& text, int more) {
        tell("both " + std::to_string(value) + "," + std::to_string(text.length()) + "," + std::to_string(more));
    }
    bool any(const ZVariant& value, const ZSelector& name) {
        tell("any " + std::to_string(value.toInt()) + "," + (name.string() ? name.string() : ""));
        return true;
    }
    int seven() { return 7; }
    real half() { return 0.5; }
    ZString title() { return "a title that needs a block of its own"; }
    Bell* self() { return this; }
    Bell* fresh() { return make("fresh"); }
    int answers() {
        callerReturn(ZVariant(12));
        return 3;
    }
    void all(ZArrayT<ZVariant>& values) { tell("all " + std::to_string(values.count())); }
    static void shared() { log += "shared "; }

    static inline std::string log;
    static inline std::atomic<int> ended{0};
    static std::string takeLog() { return std::exchange(log, {}); }
    std::function<void(Bell&)> onRing;
    std::atomic<int> rung{0};
    bool quiet = false;

private:
    void tell(const std::string& what) {
        ++rung;
        if (!quiet) log += std::string(selector().string() ? selector().string() : "") + "." + what + " ";
        if (onRing) onRing(*this);
    }

    int w = 0;
};
/// Has its own form of a signal.
class SmallBell : public Bell {
public:
    ORV_REFLECT(SmallBell);
    explicit SmallBell(const __ZPassMetaType* tag = nullptr, ZInternal* internal = nullptr)
        : Bell(tag ? tag : orv::passType(ztype<SmallBell>()), internal) {}
    void struck() {}
};

class BindingTest : public CoreTest {
protected:
    static void SetUpTestSuite();
    static void TearDownTestSuite();
    void SetUp() override {
        CoreTest::SetUp();
        Bell::takeLog();
        Bell::ended = 0;
    }
    void TearDown() override { EXPECT_EQ(ZBinding::bindings()->used(), 0u); }
    /// The type's method of that signature.
    static ZMethod* method(const char* signature, ZMetaType* type = nullptr) {
        return (type ? type : ztype<Bell>())->methodType(ZSelector(signature));
    }
    static std::string strike(Bell* bell) {
        ZBinding::callV(bell, method("void struck()"));
        return Bell::takeLog();
    }
};
