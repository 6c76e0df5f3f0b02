#include "text/forward.h"
