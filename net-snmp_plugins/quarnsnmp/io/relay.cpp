#include "feature_modules.h"

bool InitRelay(void * /*ipcCookie*/) {
    return false;
}

void DeinitRelay() {}
