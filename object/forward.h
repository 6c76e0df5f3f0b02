#pragma once

#include "core/forward.h"
#include "text/forward.h"

class __ZPassMetaType;
class ZBinding;
class ZBindingItem;
class ZBindingLink;
class ZBindingSet;
struct ZBindingStack;
class ZCompositeType;
class ZDetachContext;
class ZEnum;
struct ZEnumItem;
class ZEnumType;
class ZFixedMethod;
class ZInlineMethod;
class ZInlineType;
class ZMetaType;
class ZMethod;
class ZMethodBindings;
class ZMethodCall;
class ZMethodDispatch;
class ZMethodPtr;
class ZMethodRef;
class ZNamedMethod;
class ZObject;
class ZProperty;
class ZPropertyPtr;
class ZPropertyRef;
class ZSelectorType;
class ZType;
class ZTypeCategory;
class ZTypePtrKey;

// Of higher layers: handed through, never looked into here.
class ZAnimation;
class ZBlock;
class ZColorContext;
class ZCSPMarker;
class ZEvent;
class ZEventQueue;
class ZPlugin;
class ZResource;
class ZStream;
class ZStringResource;
class ZThread;
class ZXSTNode;

namespace orv::detail {
struct ObjectLayout;
}
