#pragma once

#include "core/construct.h"

#include <functional>
#include <vector>

/// An item that owns a counted block, so that copying it can fail, and that tells when it dies. It moves by its bytes.
/// Items order by `value` only; `mark` tells equal ones apart.
struct Tracked {
    using ZRelocatable = void;

    int value = 0;
    int mark = 0;
    void* own = nullptr;

    Tracked() { take(); }
    Tracked(int value, int mark = 0) : value(value), mark(mark) { take(); }
    Tracked(const Tracked& other) : value(other.value), mark(other.mark) { take(); }
    Tracked(Tracked&& other) noexcept : value(other.value), mark(other.mark), own(std::exchange(other.own, nullptr)) {}
    Tracked& operator=(const Tracked& other) {
        value = other.value;
        mark = other.mark;
        return *this;
    }
    ~Tracked() {
        // The block goes first: a destructor that runs twice, or over foreign bytes, shows.
        zfree(own);
        own = nullptr;
        died.push_back(value);
        if (onDeath) onDeath(*this);
    }
    int compare(const Tracked& other) const { return (value > other.value) - (value < other.value); }
    uint hashKey() const { return uint(value); }

    static inline std::vector<int> died;
    static inline std::function<void(Tracked&)> onDeath;

private:
    void take() {
        own = __zalloc(4);
        if (!own) ZError::fail();
    }
};

/// The same for an item that its own address matters to: bytes can't move it.
struct Anchored {
    int value = 0;
    int mark = 0;
    const Anchored* self = this;
    void* own = nullptr;

    Anchored(int value = 0, int mark = 0) : value(value), mark(mark) { take(); }
    Anchored(const Anchored& other) : value(other.value), mark(other.mark) { take(); }
    Anchored(Anchored&& other) noexcept
        : value(other.value), mark(other.mark), own(std::exchange(other.own, nullptr)) {}
    Anchored& operator=(const Anchored& other) {
        value = other.value;
        mark = other.mark;
        return *this;
    }
    ~Anchored() { zfree(own); }
    bool sound() const { return self == this && own; }
    int compare(const Anchored& other) const { return (value > other.value) - (value < other.value); }

private:
    void take() {
        own = __zalloc(4);
        if (!own) ZError::fail();
    }
};
