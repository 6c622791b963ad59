#include "feature_modules.h"

bool InitPower(void * /*ipcCookie*/) {
    return false;
}

void DeinitPower() {}

void PollPower() {}
