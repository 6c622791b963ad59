#include "feature_modules.h"

bool InitRebootInfo(void * /*ipcCookie*/) {
    return false;
}

void DeinitRebootInfo() {}
