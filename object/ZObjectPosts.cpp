#include "core/ZUnique.h"
#include "object/ZObjectData.h"
#include "object/ztype.h"
#include "value/ZVSelectMap.h"

namespace orv {

/// The ids of an object's named posts. Any thread may ask and change them.
struct ObjectPosts {
    ZSpinLock lock; ///< "object posting lock"
    ZVSelectMap ids{ztype<ZUnique>()};

    /// Those of an object, made on demand; null without memory.
    static ObjectPosts* of(ObjectData& data) {
        if (ObjectPosts* known = toolkit::loadAcquire(data.posts)) return known;
        auto made = zmake<ObjectPosts>();
        ObjectPosts* other = nullptr;
        if (!made || toolkit::compareExchange(data.posts, other, made)) return made;
        zrelease(made);
        return other;
    }
};

void dropPosts(ObjectData& data) { zrelease(std::exchange(data.posts, nullptr)); }

} // namespace orv

using namespace orv;

ZUnique ZObject::namedMethodPostId(const ZSelector& name) const {
    ObjectPosts* posts = priv ? toolkit::loadAcquire(priv->posts) : nullptr;
    if (!posts) return ZUnique(0);
    ZScopedLock held(posts->lock);
    auto id = static_cast<const ZUnique*>(std::as_const(posts->ids).get(name));
    return id ? *id : ZUnique(0);
}
bool ZObject::setNamedMethodPostId(const ZSelector& name, const ZUnique& id) {
    if (!priv || name.isEmpty() || priv->has(ObjectData::Deleting)) return false;
    if (id.isEmpty()) return removeMethodPost(name);
    ObjectPosts* posts = ObjectPosts::of(*priv);
    if (!posts) return false;
    ZScopedLock held(posts->lock);
    return posts->ids.setItem(name, &id);
}
ZUnique ZObject::postedMethodId(const ZSelector& name) const { return namedMethodPostId(name); }
bool ZObject::setPostedMethodId(const ZSelector& name, const ZUnique& id) { return setNamedMethodPostId(name, id); }
bool ZObject::removeMethodPost(const ZSelector& name) {
    ObjectPosts* posts = priv ? toolkit::loadAcquire(priv->posts) : nullptr;
    if (!posts) return false;
    ZScopedLock held(posts->lock);
    return posts->ids.remove(name);
}
