#include "feature_modules.h"

bool InitFocusStepper(void * /*ipcCookie*/) {
    return false;
}

void DeinitFocusStepper() {}
