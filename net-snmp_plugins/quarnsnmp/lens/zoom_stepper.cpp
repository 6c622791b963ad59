#include "feature_modules.h"

bool InitZoomStepper(void * /*ipcCookie*/) {
    return false;
}

void DeinitZoomStepper() {}
