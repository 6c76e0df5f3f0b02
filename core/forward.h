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
class ZPointerIndex;
class ZPointerIndexMap;
class ZPtrKey;
class ZRBMultiMap;
class ZRedBlackMap;
class ZSelector;
class ZSelectorMap;
class ZSelectorPair;
class ZSelectString;
class ZSharedLock;
class ZSignal;
class ZSpinLock;
class ZString;
class ZToken;
class ZTokenSpace;
class ZUnique;
template <class T> class ZArrayT;
template <class K> class ZHashSetT;
template <class K, class I> class ZHashMapT;
template <class V> class ZSelectMapT;
template <class K, class V> class ZKeyMapT;
