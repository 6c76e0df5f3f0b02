#pragma once

#include <object/ZObject.h>
#include <object/reflect.h>

/// A gauge of a plant: an object class of a program outside the library.
class Gauge : public ZObject {
public:
    ORV_REFLECT(Gauge);
    enum State : int { Idle, Running, Alarm };

    explicit Gauge(const __ZPassMetaType* type = nullptr, ZInternal* internal = nullptr);

    int level() const { return filled; }
    bool setLevel(const int& value);
    State state() const { return now; }
    bool setState(const State& value);
    /// By how much the level is above another.
    int above(int other) const { return filled - other; }

private:
    int filled = 0;
    State now = Idle;
};

/// What a gauge said once: a value.
struct Reading {
    ORV_REFLECT(Reading);
    int level = 0;
    double factor = 1;

    Reading() = default;
    Reading(int level, double factor) : level(level), factor(factor) {}
    double scaled() const { return level * factor; }
    int compare(const Reading& other) const { return level < other.level ? -1 : level > other.level; }
};
