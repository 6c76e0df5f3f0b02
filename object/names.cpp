#include "object/names.h"

#include "object/ZInlineType.h"

namespace orv {

bool openNames(const ModuleNames& module) {
    bool all = true;
    for (const NameRow* row = module.selectors; row != module.selectorsEnd; ++row) {
        auto cell = static_cast<SelectorCell*>(row->recordAt());
        if (cell->get().isEmpty()) all &= (::new (cell->bytes) ZSelector)->link(row->textAt(), false);
    }
    return all;
}

void closeNames(const ModuleNames& module) {
    for (const NameRow* row = module.typesEnd; row != module.types;)
        static_cast<ZInlineType*>((--row)->recordAt())->clear();
    for (const NameRow* row = module.selectorsEnd; row != module.selectors;) {
        ZSelector& name = static_cast<SelectorCell*>((--row)->recordAt())->get();
        if (!name.isEmpty()) name.unlink();
    }
}

} // namespace orv
