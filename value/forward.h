#pragma once

#include "object/forward.h"

class ZTypedPtr;
class ZVArray;
class ZVHashSet;
class ZVKeyMap;
class ZVSelectMap;
class ZVariant;
