#pragma once

#include "object/SelectorCell.h"
#include "object/glueText.h"

/// Names and types in code at one load per use. The accessors push the address of a hidden record and of its text to a
/// table of the module that they are compiled into; whoever opens a module links the names that its tables list, and
/// lets go of what they hold when the module closes. In between the records are read without a lock. Types are looked
/// up at their first use.

namespace orv {

/// A row of a module's table: where record and text stand, each counted from its own member.
struct NameRow {
    int record, text;

    void* recordAt() const { return reinterpret_cast<char*>(uintptr_t(&record)) + record; }
    const char* textAt() const { return reinterpret_cast<const char*>(&text) + text; }
};
struct ModuleNames {
    const NameRow *selectors, *selectorsEnd;
    const NameRow *types, *typesEnd;
};

/// Links what a module's code names; one record may stand in many rows. False without memory for a name: those are
/// then empty. Not for two threads at a time.
ORV_API bool openNames(const ModuleNames& module);
/// Back to front; afterwards the module's memory may go.
ORV_API void closeNames(const ModuleNames& module);

namespace detail {

extern "C" {
[[gnu::visibility("hidden"), gnu::weak]] extern const NameRow __start_orv_selectors[];
[[gnu::visibility("hidden"), gnu::weak]] extern const NameRow __stop_orv_selectors[];
[[gnu::visibility("hidden"), gnu::weak]] extern const NameRow __start_orv_types[];
[[gnu::visibility("hidden"), gnu::weak]] extern const NameRow __stop_orv_types[];
}

template <glue::FixedText Text> struct [[gnu::visibility("hidden")]] SelectorPlace {
    static constinit inline SelectorCell cell{};
    static constexpr glue::FixedText text = Text;
};

} // namespace detail

/// The tables of the module that the caller is compiled into.
[[gnu::visibility("hidden")]] inline ModuleNames moduleNames() {
    using namespace detail;
    return {__start_orv_selectors, __stop_orv_selectors, __start_orv_types, __stop_orv_types};
}

} // namespace orv

// The compiler knows the place of both symbols relative to the row, so rows need no relocation.
#define ORV_NAME_ROW(table, record, text)                                                                              \
    asm(".pushsection " table                                                                                          \
        ",\"a\",@progbits\n\t.balign 4\n\t.long %c0 - .\n\t.long %c1 - .\n\t.popsection" ::"i"(&record),               \
        "i"(&text))

/// The selector of a text in normal form, which any module may name any number of times: `zsel<"width">()`. Empty while
/// the module isn't open.
template <orv::glue::FixedText Text> [[gnu::always_inline]] inline const ZSelector& zsel() {
    using Place = orv::detail::SelectorPlace<Text>;
    ORV_NAME_ROW("orv_selectors", Place::cell, Place::text);
    return Place::cell.get();
}
