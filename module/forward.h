#pragma once

#include "object/forward.h"

class ZModule;
class ZPackage;
struct ZPackageLink;
