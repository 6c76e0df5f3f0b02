#pragma once

#include "object/forward.h"

class ZArgument;
class ZContentMap;
class ZNamedTypeArray;
class ZNamedTypeArrayType;
class ZSampleTime;
class ZTypeArray;
class ZTypedPtr;
class ZTypeNameMap;
class ZTypeNameMapType;
class ZUnknownData;
class ZVariant;
class ZVariantDelegate;
class ZVArray;
class ZVHashSet;
class ZVKeyMap;
class ZVMatrix;
class ZVSelectMap;
class ZVSelectMapType;
