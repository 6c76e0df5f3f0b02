#pragma once

#include "object/ZInlineMethod.h"
#include "object/methodTables.h"

namespace orv {

/// The list of a type's inline methods.
struct InlineLinks {
    static void link(MethodTables& tables, const ZInlineMethod* record);
    static void unlink(MethodTables& tables, const ZInlineMethod* record);
    /// Those of a signature or name; all for null.
    static void reset(MethodTables& tables, const ZSelector* name);
    /// The type ends: all are reset and leave the list.
    static void drop(MethodTables& tables);

    // The list of multi-method records of the process

    static void list(const ZInlineMethod* record);
    static void unlist(const ZInlineMethod* record);
    static ZInlineMethod* nextListed(const ZInlineMethod* record) { return record->nextMulti; }
    static const ZArrayT<ZMetaType*>& types(const ZInlineMethod* record) { return record->paramTypes; }
    // Under its lock
    static void unlistHeld(const ZInlineMethod* record);
    static ZArrayT<ZMetaType*> takeTypes(ZInlineMethod* record);

    /// The object that a record was looked up on ends.
    static void forgetObject(ZInlineMethod* record) {
        record->reset();
        record->ownerObject = nullptr;
    }
};

} // namespace orv
