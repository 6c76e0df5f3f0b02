#pragma once

#include "core/forward.h"

class ZArgument;
class ZBlendPos;
class ZCharBuffer;
class ZDateTime;
class ZFileInfo;
class ZFileName;
class ZInteger;
class ZLongestCommonSubsequence;
class ZMethodRef;
class ZRange;
class ZRegExp;
class ZStringPair;
struct ZStringArg;
class ZTime;
template <class C> class ORV_API ZCharStrT;
using ZCharStr = ZCharStrT<char>;
using ZWCharStr = ZCharStrT<wchar>;
using ZICharStr = ZCharStrT<ichar>;
