#include "feature_modules.h"

bool InitTemperature(void * /*ipcCookie*/) {
    return false;
}

void DeinitTemperature() {}

void PollTemperature() {}
