#pragma once

#include "object/forward.h"

class ZArgument;
class ZSampleTime;
class ZTypedPtr;
class ZUnknownData;
class ZVariant;
class ZVariantDelegate;
class ZVArray;
class ZVHashSet;
class ZVKeyMap;
class ZVSelectMap;
class ZVSelectMapType;
