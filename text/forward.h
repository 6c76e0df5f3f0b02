#pragma once

#include "core/forward.h"

class ZBlendPos;
class ZDateTime;
class ZFileInfo;
class ZFileName;
class ZInteger;
class ZRange;
class ZStringPair;
class ZTime;
