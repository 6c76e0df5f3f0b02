#pragma once

#include "bench/support/pair.h"

/// The other side of the rows about types, objects and variants. Each peer's headers stay in its own source, and each
/// function checks its results before it times them. A function is null where its peer isn't installed. What our side
/// has to do alike stands here.
namespace peers {

constexpr int typeCount = 500;    ///< registered types, named by `typeName`
constexpr int childCount = 1000;  ///< children of one object, named by `childName`
constexpr int propertyCount = 50; ///< of type int, read by one getter each
constexpr int stride = 37;        ///< names are asked in steps of so many, around the end, so that all get their turn

/// "DesignShape0" and so on; the text that is asked isn't the one that was registered.
const char* typeName(int index);
/// "layer0" and so on.
const char* childName(int index);

/// An object of a class with the properties x, y, width, height (int), opacity, angle (real), name (text), visible
/// (bool), in this order, with getters and setters; "width" is read, and set to another value each time. Dynamic: the
/// object has eight further properties "note0" to "note7" of ints that aren't declared, and "note5" is meant.
namespace qt {
extern const BenchPair::Run propertyGet, propertySet, dynamicGet, dynamicSet;
/// "int add(int, int)" of the same class, found by its name for each call.
extern const BenchPair::Run invoke;
extern const BenchPair::Run typeFromName;
/// One plain object on the heap and its end.
extern const BenchPair::Run create;
extern const BenchPair::Run childByName;
/// All `propertyCount` properties by the class's own list of them, and their sum.
extern const BenchPair::Run readAll;
/// A flags enum of eight items: `enumText` to its value and that back to the text.
extern const BenchPair::Run enums;
/// A copy and its end: of an int; of a text of 24 characters.
extern const BenchPair::Run copyInt, copyText;
/// The text "123456" in a variant asked for its int.
extern const BenchPair::Run textToInt;
/// A signal without arguments, and so many slots of as many objects connected to it, each counting its calls.
extern const BenchPair::Run fire0, fire1, fire10;
/// A connection by the texts of signal and slot, and its end.
extern const BenchPair::Run connect;
} // namespace qt

constexpr char enumText[] = "Bold|Italic|Overline";
constexpr char copiedText[] = "a text of 24 characters.";
static_assert(sizeof copiedText == 25);

namespace rttr {
/// "int add(int, int)": found by its name for each call; found once.
extern const BenchPair::Run invoke, cachedInvoke;
/// "width", found by its name each time, of a struct with the members x, y, width, height (int), opacity, angle (real).
extern const BenchPair::Run structGet, structSet;
} // namespace rttr

namespace gobject {
extern const BenchPair::Run typeFromName;
} // namespace gobject

} // namespace peers
