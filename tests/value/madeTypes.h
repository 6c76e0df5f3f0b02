#pragma once

#include "core/construct.h"
#include "object/ZMetaType.h"
#include "tests/support/CoreScope.h"
#include "value/ZVariant.h"

#include <cstring>
#include <memory>

/// Types made at run time for the tests of values.

/// A structure that owns a counted block and knows how many of its kind there are.
template <int Bytes> struct Owner {
    void* block = nullptr;
    byte rest[Bytes - sizeof(void*)] = {};

    Owner() { take(); }
    Owner(const Owner& other) {
        std::memcpy(rest, other.rest, sizeof rest);
        take();
    }
    ~Owner() { zfree(block); }
    int number() const {
        int value;
        std::memcpy(&value, rest, sizeof value);
        return value;
    }
    void setNumber(int value) { std::memcpy(rest, &value, sizeof value); }

private:
    void take() {
        block = __zalloc(4);
        if (!block) ZError::fail();
    }
};
using Small = Owner<16>;
using Large24 = Owner<24>;

template <class T> ZTypeCallback asCallback(T* function) { return reinterpret_cast<ZTypeCallback>(function); }

/// A metatype with everything that a value of the class needs.
template <class T> ZMetaType* makeType(const char* name, ZMetaType::Type kind = ZMetaType::Structure) {
    ZMetaType* type = zmake<ZMetaType>(nullptr, ZSelector(name), kind);
    if (!type) return nullptr;
    type->setSize(sizeof(T));
    type->setAlignment(alignof(T));
    type->setCallback(ZMetaType::ConstructInstance, asCallback(+[](void* place, ZMetaType*) {
                          ZFailGuard guard;
                          ::new (place) T();
                          if (!guard.rose()) return true;
                          guard.forget();
                          static_cast<T*>(place)->~T();
                          return false;
                      }));
    type->setCallback(ZMetaType::DestructInstance, asCallback(+[](void* value) {
                          static_cast<T*>(value)->~T();
                          return true;
                      }));
    type->setCallback(ZMetaType::CopyInstance1, asCallback(+[](void* target, const void* source) {
                          ZFailGuard guard;
                          ::new (target) T(*static_cast<const T*>(source));
                          if (!guard.rose()) return true;
                          guard.forget();
                          static_cast<T*>(target)->~T();
                          return false;
                      }));
    type->setCallback(ZMetaType::CopyInstance2, asCallback(+[](const void* source) -> void* {
                          return zmake<T>(*static_cast<const T*>(source));
                      }));
    type->setCallback(ZMetaType::ReleaseInstance, asCallback(+[](void* value) { zrelease(static_cast<T*>(value)); }));
    type->setCallback(ZMetaType::CompareInstance, asCallback(+[](const void* a, const void* b) {
                          int first = static_cast<const T*>(a)->number(), second = static_cast<const T*>(b)->number();
                          return (first > second) - (first < second);
                      }));
    return type;
}

/// A type of each plain kind, by its kind, and some of structures.
struct MadeTypes {
    ZMetaType* plain[17] = {};
    ZMetaType* small = makeType<Small>("TestSmall");
    ZMetaType* large = makeType<Large24>("TestLarge");

    MadeTypes() {
        static const char* names[] = {"testunknown",  "testvoid",  "testbool",  "testchar",   "testbyte",
                                      "testshort",    "testword",  "testint",   "testuint",   "testlarge",
                                      "testularge",   "testenum",  "testfloat", "testdouble", "testreal",
                                      "TestSelector", "TestString"};
        for (int kind = ZMetaType::Bool; kind <= ZMetaType::String; ++kind)
            plain[kind] = zmake<ZMetaType>(nullptr, ZSelector(names[kind]), ZMetaType::Type(kind));
    }
    ~MadeTypes() {
        for (ZMetaType* type : plain)
            if (type) type->release();
        small->release();
        large->release();
    }
    ZMetaType* operator[](int kind) const { return plain[kind]; }
};

/// The library is up, with these types.
class ValueTest : public CoreTest {
protected:
    static void SetUpTestSuite() {
        CoreTest::SetUpTestSuite();
        types = std::make_unique<MadeTypes>();
    }
    static void TearDownTestSuite() {
        types.reset();
        CoreTest::TearDownTestSuite();
    }
    template <class T> static ZVariant value(int kind, const T& number) { return ZVariant((*types)[kind], &number); }
    static ZVariant text(const char* characters) {
        ZString string(characters);
        return ZVariant((*types)[ZMetaType::String], &string);
    }
    static ZVariant name(const char* characters) {
        ZSelector selector(characters);
        return ZVariant((*types)[ZMetaType::Selector], &selector);
    }
    static ZVariant integer(int number) { return value(ZMetaType::Int, number); }
    static ZVariant number(double real) { return value(ZMetaType::Real, real); }

    static inline std::unique_ptr<MadeTypes> types;
};
