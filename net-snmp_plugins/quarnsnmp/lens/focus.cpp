#include "feature_modules.h"

bool InitFocus(void * /*ipcCookie*/) {
    return false;
}

void DeinitFocus() {}
