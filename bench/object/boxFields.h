#pragma once

#include "object/glue.h"

/// The numbers of the peers' shape, with our accessors: for a plain structure and for an object.
struct BoxFields {
#define ORV_FIELD(type, name, Name)                                                                                    \
    type name() const { return name##Value; }                                                                          \
    bool set##Name(const type& value) {                                                                                \
        name##Value = value;                                                                                           \
        return true;                                                                                                   \
    }                                                                                                                  \
    type name##Value = {}
    ORV_FIELD(int, x, X);
    ORV_FIELD(int, y, Y);
    ORV_FIELD(int, width, Width);
    ORV_FIELD(int, height, Height);
    ORV_FIELD(real, opacity, Opacity);
    ORV_FIELD(real, angle, Angle);
#undef ORV_FIELD
};

/// Rows of a class that derives from it.
#define ORV_BOX_METHODS                                                                                                \
    ORV_VALUE_ACCESSORS(int, x, X), ORV_VALUE_ACCESSORS(int, y, Y), ORV_VALUE_ACCESSORS(int, width, Width),            \
        ORV_VALUE_ACCESSORS(int, height, Height), ORV_VALUE_ACCESSORS(real, opacity, Opacity),                         \
        ORV_VALUE_ACCESSORS(real, angle, Angle)
#define ORV_BOX_PROPERTIES(words)                                                                                      \
    ORV_PROPERTY(int, x, words), ORV_PROPERTY(int, y, words), ORV_PROPERTY(int, width, words),                         \
        ORV_PROPERTY(int, height, words), ORV_PROPERTY(real, opacity, words), ORV_PROPERTY(real, angle, words)
