#include "feature_modules.h"

bool InitIris(void * /*ipcCookie*/) {
    return false;
}

void DeinitIris() {}
