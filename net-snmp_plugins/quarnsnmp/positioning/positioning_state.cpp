// SPDX-License-Identifier: Apache-2.0
#include "positioning_state.h"

#include "core_utils.h"
#include "zorva_api_exception.h"

namespace positioning {

void *gApiCookie = nullptr;
std::vector<std::string> gPositionings;
uint32_t gLastPanTimeout = 0;
uint32_t gLastTiltTimeout = 0;
uint32_t gLastZoomTimeout = 0;

bool IsConnected() {
    return gApiCookie != nullptr && gPositionings.size() > kDefaultIndex;
}

PositionLimits ReadSoftPositionLimits() {
    uint8_t ptzEnablePanEnable = 0;
    int32_t ptzPositionLimitsPanMinMillidegrees = 0;
    int32_t ptzPositionLimitsPanMaxMillidegrees = 0;
    uint8_t ptzEnableTiltEnable = 0;
    int32_t ptzPositionLimitsTiltMinMillidegrees = 0;
    int32_t ptzPositionLimitsTiltMaxMillidegrees = 0;
    uint8_t ptzEnableZoomEnable = 0;
    int32_t ptzPositionLimitsZoomMinDeciX = 0;
    int32_t ptzPositionLimitsZoomMaxDeciX = 0;
    ZORVA_API_CALL(zorva_api_positioning_get_soft_position_limits_send(gApiCookie,
        gPositionings[kDefaultIndex].c_str(),
        &ptzEnablePanEnable, &ptzPositionLimitsPanMinMillidegrees, &ptzPositionLimitsPanMaxMillidegrees,
        &ptzEnableTiltEnable, &ptzPositionLimitsTiltMinMillidegrees, &ptzPositionLimitsTiltMaxMillidegrees,
        &ptzEnableZoomEnable, &ptzPositionLimitsZoomMinDeciX, &ptzPositionLimitsZoomMaxDeciX));
    return {ptzEnablePanEnable != 0,  ptzPositionLimitsPanMinMillidegrees,  ptzPositionLimitsPanMaxMillidegrees,
            ptzEnableTiltEnable != 0, ptzPositionLimitsTiltMinMillidegrees, ptzPositionLimitsTiltMaxMillidegrees,
            ptzEnableZoomEnable != 0, ptzPositionLimitsZoomMinDeciX,        ptzPositionLimitsZoomMaxDeciX};
}

const char *FlagText(bool flag) {
    return flag ? "T" : "F";
}

} // namespace positioning
