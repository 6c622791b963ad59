#include "feature_modules.h"

bool InitAlarm(void * /*ipcCookie*/) {
    return false;
}

void DeinitAlarm() {}
