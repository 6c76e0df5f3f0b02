#pragma once

#include "object/glue.h"

/// Rows that containers whose types are known at run time share. They stand in the table of each: what a class inherits
/// from a base without a declaration of its own isn't declared by itself.

/// Of `orv::ContainerLocks`.
#define ORV_LOCK_ROWS                                                                                                  \
    ORV_METHOD(bool, makeLock, (bool, bool), const, "unsafe"), ORV_METHOD(bool, lockable, (), const),                  \
        ORV_METHOD(bool, canLock, (), const), ORV_METHOD(bool, lock, (), const, "unsafe"),                             \
        ORV_METHOD(bool, tryLock, (), const, "unsafe"), ORV_METHOD(bool, readLock, (), const, "unsafe"),               \
        ORV_METHOD(bool, tryReadLock, (), const, "unsafe"), ORV_METHOD(bool, writeLock, (), const, "unsafe"),          \
        ORV_METHOD(bool, tryWriteLock, (), const, "unsafe"), ORV_METHOD(bool, unlock, (), const, "unsafe"),            \
        ORV_METHOD(bool, setSpinLock, (bool), const, "unsafe")

/// Of `orv::ValueMap`.
#define ORV_VALUE_MAP_ROWS                                                                                             \
    ORV_METHOD(ZMetaType*, getValueType, (), const), ORV_METHOD(ZSelector, getTypeName, (), const),                    \
        ORV_METHOD(void, setTypeName, (const ZSelector&), ), ORV_METHOD(bool, hasType, (), const),                     \
        ORV_METHOD(bool, isType, (const ZMetaType*), const), ORV_METHOD(bool, isType, (const ZSelector&), const),      \
        ORV_METHOD(bool, isSelectorType, (), const), ORV_METHOD(bool, isZType, (), const),                             \
        ORV_METHOD(uint, count, (), const), ORV_METHOD(bool, isEmpty, (), const),                                      \
        ORV_METHOD(uint, maxcount, (), const), ORV_METHOD(ZVariant, entry, (int), const),                              \
        ORV_METHOD(ZVArray, values, (), const), ORV_METHOD(int, findValue, (const ZVariant&), const),                  \
        ORV_METHOD(bool, containsValue, (const ZVariant&), const), ORV_METHOD(bool, removeIndex, (int), ),             \
        ORV_METHOD(bool, removeItems, (const ZArrayT<int>&), ), ORV_METHOD(bool, removeItems, (int, int), ),           \
        ORV_METHOD(bool, removeValue, (const ZVariant&), ), ORV_METHOD(bool, removeNull, (), ),                        \
        ORV_METHOD(bool, changePlace, (int, int), ), ORV_METHOD(bool, sortByValue, (bool), ),                          \
        ORV_METHOD(bool, sort, (const ZMethodRef&, bool), ),                                                           \
        ORV_METHOD(bool, getSortOrder, (ZArrayT<int>&, bool), const),                                                  \
        ORV_METHOD(bool, getSortOrder, (ZArrayT<int>&, const ZMethodRef&, bool), const),                               \
        ORV_METHOD(void, clear, (), ), ORV_METHOD(bool, drop, (), ), ORV_METHOD(int, refcount, (), const),             \
        ORV_METHOD(bool, isDetached, (), const), ORV_METHOD(bool, detach, (), ), ORV_METHOD(bool, detach, (bool), ),   \
        ORV_METHOD(bool, deepDetach, (), ), ORV_METHOD(bool, deepDetach, (ZDetachContext*), ),                         \
        ORV_METHOD(bool, rebuildTree, (), ),                                                                           \
        ORV_METHOD(int16, expand, (), const), ORV_METHOD(bool, setExpand, (int16), ),                                  \
        ORV_METHOD(bool, expand, (uint), ), ORV_METHOD(bool, setSpace, (int), ), ORV_METHOD(bool, trim, (), ),         \
        ORV_METHOD(bool, endian, (), const), ORV_METHOD(bool, setEndian, (bool), ),                                    \
        ORV_METHOD(uint, hashbits, (), const), ORV_METHOD(bool, setHashbits, (uint), ),                                \
        ORV_METHOD(uint, autohash, (), const), ORV_METHOD(bool, setAutohash, (uint), ),                                \
        ORV_METHOD(int, maxCollisions, (), const), ORV_METHOD(int, predecessor, (int), const), ORV_LOCK_ROWS

/// Of the arrays of instances, see `orv::TypeItems`.
#define ORV_TYPE_ITEM_ROWS(Array)                                                                                      \
    ORV_METHOD(void, assign, (const Array&), ), ORV_METHOD(void, swap, (Array&), ),                                    \
        ORV_METHOD(ZMetaType*, getValueType, (), const), ORV_METHOD(ZSelector, getTypeName, (), const),                \
        ORV_METHOD(bool, hasType, (), const), ORV_METHOD(bool, isType, (const ZMetaType*), const),                     \
        ORV_METHOD(bool, isType, (const ZSelector&), const), ORV_METHOD(bool, isSelectorType, (), const),              \
        ORV_METHOD(bool, isZType, (), const), ORV_METHOD(ZMetaType*, typeByIndex, (int), const),                       \
        ORV_METHOD(uint, count, (), const), ORV_METHOD(bool, isEmpty, (), const),                                      \
        ORV_METHOD(uint, maxcount, (), const), ORV_METHOD(ZType*, get, (int), const),                                  \
        ORV_METHOD(ZVariant, variant, (int), const), ORV_METHOD(ZVariant, entry, (int), const),                        \
        ORV_METHOD(ZVArray, array, (), const), ORV_METHOD(bool, append, (const ZType*), ),                             \
        ORV_METHOD(bool, append, (const ZVariant&), ), ORV_METHOD(bool, append, (const Array&), ),                     \
        ORV_METHOD(bool, push, (const ZVariant&), ), ORV_METHOD(ZVariant, pop, (), ),                                  \
        ORV_METHOD(bool, insert, (int, const ZType*), ), ORV_METHOD(bool, insert, (int, const ZVariant&), ),           \
        ORV_METHOD(bool, insertArray, (int, const Array&), ), ORV_METHOD(bool, store, (int, const ZType*), ),          \
        ORV_METHOD(bool, store, (int, const ZVariant&), ), ORV_METHOD(bool, set, (int, const ZVariant&), ),            \
        ORV_METHOD(bool, remove, (int, int), ), ORV_METHOD(bool, removeIndex, (int), ),                                \
        ORV_METHOD(bool, removeValue, (const ZVariant&), ), ORV_METHOD(bool, removeItems, (const ZArrayT<int>&), ),    \
        ORV_METHOD(bool, discardItems, (), ), ORV_METHOD(void, clear, (), ), ORV_METHOD(void, clearAll, (), ),         \
        ORV_METHOD(bool, setCount, (int), ), ORV_METHOD(bool, setSpace, (int), ),                                      \
        ORV_METHOD(bool, setExpand, (int16), ), ORV_METHOD(int16, expand, (), const),                                  \
        ORV_METHOD(bool, expand, (uint), ), ORV_METHOD(bool, expand, (uint, bool), ), ORV_METHOD(bool, trim, (), ),    \
        ORV_METHOD(bool, changePlace, (int, int), ), ORV_METHOD(bool, changePlace, (int, int, int), ),                 \
        ORV_METHOD(bool, changePlace, (const ZArrayT<int>&, int), ),                                                   \
        ORV_METHOD(int, findValue, (const ZVariant&), const),                                                          \
        ORV_METHOD(int, findValue, (const ZVariant&, int), const), ORV_METHOD(int, findPos, (const ZVariant&), const), \
        ORV_METHOD(int, findPosition, (const ZVariant&, const ZMethodRef&, bool), const),                              \
        ORV_METHOD(bool, contains, (const ZVariant&), const), ORV_METHOD(bool, contains, (const Array&), const),       \
        ORV_METHOD(bool, overlapping, (const Array&), const), ORV_METHOD(int, compare, (const Array&), const),         \
        ORV_METHOD(int, compare, (const Array&, const ZMethodRef&), const),                                            \
        ORV_METHOD(bool, matchValue, (const Array&, real), const), ORV_METHOD(uint, hashKey, (), const),               \
        ORV_METHOD(bool, sort, (), ), ORV_METHOD(bool, sortByValue, (bool), ),                                         \
        ORV_METHOD(bool, sort, (const ZMethodRef&, bool), ),                                                           \
        ORV_METHOD(bool, getSortOrder, (ZArrayT<int>&, bool), const), ORV_METHOD(bool, reverse, (), ),                 \
        ORV_METHOD(Array, rearrange, (const ZArrayT<int>&), const),                                                    \
        ORV_METHOD(Array, extract, (const ZArrayT<int>&), const), ORV_METHOD(Array, extract, (int, int), const),       \
        ORV_METHOD(Array, extract, (const ZVArray&), const),                                                           \
        ORV_METHOD(Array, extractRemove, (const ZArrayT<int>&), ), ORV_METHOD(Array, extractRemove, (int, int), ),     \
        ORV_METHOD(Array, extractRemove, (const ZVArray&), ),                                                          \
        ORV_METHOD(bool, collectNullIndex, (ZArrayT<int>&), const),                                                    \
        ORV_METHOD(bool, invertIndex, (ZArrayT<int>&), const), ORV_METHOD(int, refcount, (), const),                   \
        ORV_METHOD(bool, isDetached, (), const), ORV_METHOD(bool, detach, (), ), ORV_METHOD(bool, detach, (bool), ),   \
        ORV_METHOD(bool, detach, (bool, bool), ), ORV_METHOD(bool, deepDetach, (), ),                                  \
        ORV_METHOD(bool, deepDetach, (ZDetachContext*), ), ORV_METHOD(bool, drop, (), ),                               \
        ORV_METHOD(bool, blendFrom, (const Array*, const Array*, const ZBlendPos&), ),                                 \
        ORV_METHOD(ZString, toString, (), const), ORV_METHOD(bool, validString, (), const), ORV_LOCK_ROWS
