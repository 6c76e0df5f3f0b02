#pragma once

#include "toolkit/types.h"

/// What declarations and metatypes say of a type in numbers. `ZMetaType` has these enums as its own.
namespace orv {

struct TypeKinds {
    /// The kind. Order matters: see `ZMetaType::primitive`, `isZType`, `isZObject`, `atomicData`.
    enum Type : byte {
        Unknown,
        Void,
        Bool,
        Char,
        Byte,
        Short,
        Word,
        Int,
        UInt,
        Large,
        ULarge,
        Enum,
        Float,
        Double,
        Real,
        Selector,
        String,
        Pointer,
        TypeDef,
        Structure,
        Composite,
        Class,
        Interface,
        Atomic,
        Dynamic,
        Object
    };
    enum Flags : uint {
        Final = 1,
        Public = 2,
        Polymorphic = 4,
        Lockable = 8,
        Wrapper = 16,
        BlockBMethod = 32,
        BlockBProperty = 64,
        Container = 64,
        Created = 128,
        RefStore = 256,
        Traverse = 512,
        Storable = 1024,
        Mutex = 2048,
        Variable = 4096,
        StorageBase = 8192,
        Retaining = 16384,
        PointerKey = 32768,
        PrimaryBase = 0x10000
    };
};

} // namespace orv
