#pragma once

#include "toolkit/types.h"

class ZAtomicInt;
class ZChar;
class ZCharBuffer;
class ZCharRef;
class ZCompactRBMap;
class ZCoreLib;
class ZError;
class ZInternal;
class ZLock;
class ZMetaType;
class ZMethodRef;
class ZPointerIndex;
class ZPointerIndexMap;
class ZPtrKey;
class ZRBMultiMap;
class ZRedBlackMap;
class ZSelector;
class ZSelectorData;
class ZSelectorMap;
class ZSelectorPair;
class ZSelectorSpace;
class ZSelectorUser;
class ZSelectString;
class ZSharedLock;
class ZSignal;
class ZSpinLock;
class ZString;
class ZToken;
class ZTokenSpace;
class ZTokenUser;
class ZUnique;
class ZUniqueSpace;
class ZVariant;
class ZVArray;
class ZVHashSet;
template <class T> class ZArrayT;
template <class K, class I> class ZCacheT;
template <class K, class V> struct ZCacheValueT;
template <class K, class T> class ZHashTreeT;
template <class K> class ZHashSetT;
template <class K, class I> class ZHashMapT;
template <class V> class ZSelectMapT;
template <class K, class V> class ZKeyMapT;
template <class T> class ZListT;
template <class A, class B> struct ZPairT;
template <class T> class ZQueueT;
template <class T> class ZRetainPtrT;
template <class T> class ZSlotT;
template <class T> class ZStackT;
template <class K, class T> class ZTreeItemT;
template <class K, class T> class ZTreeT;
template <class T> class ZVectorT;
template <class T> class ZWrapPtrT;

namespace orv::detail {
struct DebugLayout;
}
