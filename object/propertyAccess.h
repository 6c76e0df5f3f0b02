#pragma once

#include "object/ZMethod.h"
#include "object/propertyTables.h"
#include "value/ZVariant.h"

/// Calls of accessor methods: values come out as variants and go in by their address.
namespace orv {

/// How the result of a method becomes a variant, and how a variant goes into its parameter at a place from 1. Types are
/// resolved as seen from `type`. Under an open guard.
ReadPlan readPlan(const ZMethod* method, const ZMetaType* type);
WritePlan writePlan(const ZMethod* method, int parameter, const ZMetaType* type);

/// An argument of an accessor: an address, or an "int" by value.
struct AccessorWord {
    const void* address = nullptr;
    int number = 0;
    bool isNumber = false;

    AccessorWord(const void* address) : address(address) {}
    AccessorWord(int number) : number(number), isNumber(true) {}
};

/// The argument that a variant makes for a parameter; converted in `room` where its type asks for that. False if it
/// can't be one.
bool accessorWord(const WritePlan& plan, const ZVariant& value, ZVariant& room, AccessorWord& word);

/// Calls an accessor with at most two arguments and makes its result a variant; false if it couldn't be called.
bool callAccessor(ZMethod* method, const void* instance, const AccessorWord* words, int count, const ReadPlan& plan,
                  ZVariant& result);
/// The same for a getter without arguments.
bool callGetter(ZMethod* method, const void* instance, const ReadPlan& plan, ZVariant& result);
/// The value that an instance of the type has of a declared property: what its getter answers; without a getter that of
/// a dynamic one's declaration. False if there is none. Under an open guard.
bool readEntry(const ZMetaType* type, const PropertyCatalogue::Entry& entry, const void* instance, ZVariant& value);
/// The same for an accessor that answers a bool, or an int; `answer` is 0 for "no".
bool callForNumber(ZMethod* method, const void* instance, const AccessorWord* words, int count, int& answer);

} // namespace orv
