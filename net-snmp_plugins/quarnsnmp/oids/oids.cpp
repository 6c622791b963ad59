// SPDX-License-Identifier: Apache-2.0
#include "oids.h"

// clang-format off

// 1.3.6.1.4.1.99999.1.1: scalars of the vendor
oid oid_modelNo[]      = {1, 3, 6, 1, 4, 1, 99999, 1, 1, 1, 0};
oid oid_modelName[]    = {1, 3, 6, 1, 4, 1, 99999, 1, 1, 2, 0};
oid oid_serialNo[]     = {1, 3, 6, 1, 4, 1, 99999, 1, 1, 3, 0};
oid oid_fwVersion[]    = {1, 3, 6, 1, 4, 1, 99999, 1, 1, 4, 0};
oid oid_swVersion[]    = {1, 3, 6, 1, 4, 1, 99999, 1, 1, 5, 0};
oid oid_hwVersion[]    = {1, 3, 6, 1, 4, 1, 99999, 1, 1, 6, 0};
oid oid_temperature[]  = {1, 3, 6, 1, 4, 1, 99999, 1, 1, 7, 0};
oid oid_power[]        = {1, 3, 6, 1, 4, 1, 99999, 1, 1, 8, 0};
oid oid_voltage[]      = {1, 3, 6, 1, 4, 1, 99999, 1, 1, 9, 0};
oid oid_rebootDevice[] = {1, 3, 6, 1, 4, 1, 99999, 1, 1, 100, 0};

// 1.3.6.1.4.1.99999.1.3: tables of the vendor
oid oid_alarm[] = {1, 3, 6, 1, 4, 1, 99999, 1, 3, 1};
oid oid_relay[] = {1, 3, 6, 1, 4, 1, 99999, 1, 3, 2};

// 1.3.6.1.4.1.1206.4.2.6.1: NTCIP 1201, the module table
oid oid_maxModules[]       = {1, 3, 6, 1, 4, 1, 1206, 4, 2, 6, 1, 2};
oid oid_moduleNumber[]     = {1, 3, 6, 1, 4, 1, 1206, 4, 2, 6, 1, 3, 1, 1};
oid oid_moduleDeviceNode[] = {1, 3, 6, 1, 4, 1, 1206, 4, 2, 6, 1, 3, 1, 2};
oid oid_moduleMake[]       = {1, 3, 6, 1, 4, 1, 1206, 4, 2, 6, 1, 3, 1, 3};
oid oid_moduleModel[]      = {1, 3, 6, 1, 4, 1, 1206, 4, 2, 6, 1, 3, 1, 4};
oid oid_moduleVersion[]    = {1, 3, 6, 1, 4, 1, 1206, 4, 2, 6, 1, 3, 1, 5};
oid oid_moduleType[]       = {1, 3, 6, 1, 4, 1, 1206, 4, 2, 6, 1, 3, 1, 6};

// 1.3.6.1.4.1.1206.4.2.7: NTCIP 1205
oid oid_rangeMaximumPreset[]        = {1, 3, 6, 1, 4, 1, 1206, 4, 2, 7, 1, 1};
oid oid_rangePanLeftLimit[]         = {1, 3, 6, 1, 4, 1, 1206, 4, 2, 7, 1, 2};
oid oid_rangePanRightLimit[]        = {1, 3, 6, 1, 4, 1, 1206, 4, 2, 7, 1, 3};
oid oid_rangePanHomePosition[]      = {1, 3, 6, 1, 4, 1, 1206, 4, 2, 7, 1, 4};
oid oid_rangeTrueNorthOffset[]      = {1, 3, 6, 1, 4, 1, 1206, 4, 2, 7, 1, 5};
oid oid_rangeTiltUpLimit[]          = {1, 3, 6, 1, 4, 1, 1206, 4, 2, 7, 1, 6};
oid oid_rangeTiltDownLimit[]        = {1, 3, 6, 1, 4, 1, 1206, 4, 2, 7, 1, 7};
oid oid_rangeZoomLimit[]            = {1, 3, 6, 1, 4, 1, 1206, 4, 2, 7, 1, 8};
oid oid_rangeFocusLimit[]           = {1, 3, 6, 1, 4, 1, 1206, 4, 2, 7, 1, 9};
oid oid_rangeIrisLimit[]            = {1, 3, 6, 1, 4, 1, 1206, 4, 2, 7, 1, 10};
oid oid_rangeMinimumPanStepAngle[]  = {1, 3, 6, 1, 4, 1, 1206, 4, 2, 7, 1, 11};
oid oid_rangeMinimumTiltStepAngle[] = {1, 3, 6, 1, 4, 1, 1206, 4, 2, 7, 1, 12};
oid oid_timeoutPan[]                = {1, 3, 6, 1, 4, 1, 1206, 4, 2, 7, 2, 1};
oid oid_timeoutTilt[]               = {1, 3, 6, 1, 4, 1, 1206, 4, 2, 7, 2, 2};
oid oid_timeoutZoom[]               = {1, 3, 6, 1, 4, 1, 1206, 4, 2, 7, 2, 3};
oid oid_timeoutFocus[]              = {1, 3, 6, 1, 4, 1, 1206, 4, 2, 7, 2, 4};
oid oid_timeoutIris[]               = {1, 3, 6, 1, 4, 1, 1206, 4, 2, 7, 2, 5};
oid oid_presetGotoPosition[]        = {1, 3, 6, 1, 4, 1, 1206, 4, 2, 7, 3, 1};
oid oid_presetStorePosition[]       = {1, 3, 6, 1, 4, 1, 1206, 4, 2, 7, 3, 2};
oid oid_positionPan[]               = {1, 3, 6, 1, 4, 1, 1206, 4, 2, 7, 4, 1};
oid oid_positionTilt[]              = {1, 3, 6, 1, 4, 1, 1206, 4, 2, 7, 4, 2};
oid oid_positionZoomLens[]          = {1, 3, 6, 1, 4, 1, 1206, 4, 2, 7, 4, 3};
oid oid_positionFocusLens[]         = {1, 3, 6, 1, 4, 1, 1206, 4, 2, 7, 4, 4};
oid oid_positionIrisLens[]          = {1, 3, 6, 1, 4, 1, 1206, 4, 2, 7, 4, 5};
oid oid_systemLensFeatureControl[]  = {1, 3, 6, 1, 4, 1, 1206, 4, 2, 7, 5, 4};
oid oid_systemLensFeatureStatus[]   = {1, 3, 6, 1, 4, 1, 1206, 4, 2, 7, 5, 5};
oid oid_systemLensEquipped[]        = {1, 3, 6, 1, 4, 1, 1206, 4, 2, 7, 5, 6};
oid oid_alarmStatus[]               = {1, 3, 6, 1, 4, 1, 1206, 4, 2, 7, 6, 1, 0};
oid oid_inputStatus[]               = {1, 3, 6, 1, 4, 1, 1206, 4, 2, 7, 7, 1};
oid oid_outputStatus[]              = {1, 3, 6, 1, 4, 1, 1206, 4, 2, 7, 8, 1};
oid oid_outputControl[]             = {1, 3, 6, 1, 4, 1, 1206, 4, 2, 7, 8, 2};
