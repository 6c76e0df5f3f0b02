#pragma once

#include "core/forward.h"

class ZCompositeType;
class ZDetachContext;
class ZEnum;
class ZEnumType;
class ZInlineMethod;
class ZInlineType;
class ZMethod;
class ZMethodCall;
class ZObject;
class ZProperty;
class ZSelectorType;
class ZType;
class ZTypeCategory;
