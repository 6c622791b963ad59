#include "feature_modules.h"

bool InitPresets(void * /*ipcCookie*/) {
    return false;
}

void DeinitPresets() {}
