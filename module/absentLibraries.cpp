#include "module/ZModule.h"

// What modules answer about libraries and plugins while the library loads none: only code that is linked can be had,
// and it declares no plugins.

bool ZModule::loadLibrary() {
    if (!nativeModule || openPackageFunc || loadMode == LoadApplication) return true;
    setLoadMode(LoadInvalid);
    return false;
}
bool ZModule::loadPlugins() { return true; }
