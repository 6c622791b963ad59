#include "feature_modules.h"

bool InitPositioning(void * /*ipcCookie*/) {
    return false;
}

void DeinitPositioning() {}
