#include "feature_modules.h"

bool InitModuleInfo(void * /*ipcCookie*/) {
    return false;
}

void DeinitModuleInfo() {}
