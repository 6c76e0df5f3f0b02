#pragma once

#include "object/SyntheticType.h"
#include "object/ZEnum.h"
#include "toolkit/epoch.h"

namespace orv {
struct EnumTable;
namespace glue {
struct EnumRow;
}
} // namespace orv

/// The type of an enumeration: values are numbers of 1, 2, 4 or 8 bytes, its size, and a `ZEnum` gives them names. For
/// a value of the type the names are properties of kind bool: whether all bits of the name are set, in an enumeration
/// of bit flags, and else whether it is that value.
///
/// Any thread may ask. A change publishes a new table; what was given out of the old one by reference holds as long as
/// a `toolkit::EpochGuard` of the caller is open, or nobody changes the table. Operations that change it answer false,
/// with the table as it was, without memory.
class ORV_API ZEnumType : public orv::SyntheticType {
public:
    // Lifetime. As for metatypes; the size is that of an int.

    ZEnumType(ZPackage* package, const ZSelector& name, const __ZPassMetaType* type = nullptr,
              ZInternal* internal = nullptr);
    ZEnumType(ZPackage* package, const ZSelector& name, const ZArrayT<ZEnumItem>& items,
              const __ZPassMetaType* type = nullptr, ZInternal* internal = nullptr);
    explicit ZEnumType(const ZEnumType* source, const __ZPassMetaType* type = nullptr, ZInternal* internal = nullptr);
    explicit ZEnumType(const __ZPassMetaType* type = nullptr, ZInternal* internal = nullptr);
    /// A variant, see `getQualified`: it has the table of its main type.
    ZEnumType(const ZSelector& name, ZEnumType* main) : SyntheticType(name, main) {}
    ~ZEnumType() override;

    /// The items of a declaration, which stays in memory as long as the type. They are read at the first demand.
    void setRow(const orv::glue::EnumRow* row);

    // The table

    virtual const ZEnum& data() const;
    /// To be filled in place, before anybody else knows the type. A spare table without memory.
    virtual ZEnum& data();
    virtual bool setData(const ZEnum& table);
    virtual bool add(const ZArrayT<ZEnumItem>& items);
    virtual bool add(const ZSelector& name, int value);
    /// False if there is none of the names, or nothing of the value.
    virtual bool remove(const ZSelector& name);
    virtual bool remove(int value);
    virtual bool remove(const ZArrayT<ZSelector>& names);
    virtual bool remove(const ZEnum& table);

    // Asked of the table; see `ZEnum`

    virtual ZSelector name(int value) const;
    virtual bool names(ZArrayT<ZSelector>& names) const;
    virtual int value(const ZSelector& name) const;
    virtual bool value(const ZSelector& name, int* value) const;
    virtual bool values(ZArrayT<int>& values) const;
    virtual int resolve(const ZString& expression) const;
    virtual bool isBitFlags() const;
    /// Numbers beyond an int have no name.
    bool holds(large value) const;

    // Values through untyped pointers, which needn't be aligned

    int valueOf(const void* instance) const;
    void setValueOf(void* instance, int value) const;
    /// Whether what stands there is a value of the enumeration. C++ has no room for others, so they are no arguments of
    /// methods and aren't written to fields.
    bool isHeld(const void* instance) const;

    // Inherited operations for which the type of an enumeration has an answer of its own

    ZEnumType* enumType() const override { return const_cast<ZEnumType*>(tableType()); }
    ZType* copy() const override;
    int compare(const ZType* other) const override;
    bool detach() override;
    bool constructInstance(void* instance) override;
    bool destructInstance(void* instance) const override;
    using ZMetaType::copyInstance;
    bool copyInstance(void* target, const void* source) const override;
    int compareInstance(const void* a, const void* b) const override;
    bool isNullData(const void* instance) const override;
    using ZMetaType::fromString;
    /// Reads a number, a name, or several of both of bit flags; makes no selector.
    bool fromString(void* instance, const ZString& text) const override;
    /// The number, whatever the size.
    bool toString(const void* instance, ZString& text) const override;

protected:
    ZMetaType* makeVariant(const ZSelector& name) override;
    bool fieldNames(const void*, ZArrayT<ZSelector>& names) const override { return this->names(names); }
    uint fieldCount(const void* instance) const override;
    ZMetaType* fieldType(const void* instance, const ZSelector& name) const override;
    ZVariant readField(const void* instance, const ZSelector& name) const override;
    /// True sets the bits of the name, or the value; false clears the bits, or makes the value 0 if it is that one.
    bool writeField(void* instance, const ZSelector& name, const ZVariant& value) const override;
    bool clearField(void* instance, const ZSelector& name) const override;

private:
    /// The type itself, or the main type of a variant.
    const ZEnumType* tableType() const { return static_cast<const ZEnumType*>(described()); }
    orv::EnumTable* table() const;
    orv::EnumTable* buildTable() const;
    template <class F> bool change(F&& edit);
    bool readWord(const char* text, int length, int& value) const;
    bool known(const ZSelector& name, int& value) const;
    bool isSet(const void* instance, int item) const;

    mutable toolkit::EpochPtr<orv::EnumTable> published; ///< null until first asked for
    const orv::glue::EnumRow* row = nullptr;
    ZEnum spare;
};
