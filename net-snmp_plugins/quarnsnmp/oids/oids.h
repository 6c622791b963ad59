// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Object identifiers, `oid_<objectName>` each. They are stored as they are registered, without the instance. Those of
 * the vendor scalars end in 0 nevertheless, and the agent appends the instance 0 once more.
 */
#ifndef QUARNSNMP_OIDS_H
#define QUARNSNMP_OIDS_H

#include "net_snmp.h"

// Vendor objects: identity of the camera
extern oid oid_modelNo[11];
extern oid oid_modelName[11];
extern oid oid_serialNo[11];
extern oid oid_fwVersion[11];
extern oid oid_swVersion[11];
extern oid oid_hwVersion[11];

// Vendor objects: health and restart
extern oid oid_temperature[11];
extern oid oid_power[11];
extern oid oid_voltage[11];
extern oid oid_rebootDevice[11];

// Vendor tables
extern oid oid_alarm[10];
extern oid oid_relay[10];

// NTCIP 1201: module table
extern oid oid_maxModules[12];
extern oid oid_moduleNumber[14];
extern oid oid_moduleDeviceNode[14];
extern oid oid_moduleMake[14];
extern oid oid_moduleModel[14];
extern oid oid_moduleVersion[14];
extern oid oid_moduleType[14];

// NTCIP 1205: ranges, time-outs and positions of pan, tilt and zoom
extern oid oid_rangePanLeftLimit[12];
extern oid oid_rangePanRightLimit[12];
extern oid oid_rangePanHomePosition[12];
extern oid oid_rangeTrueNorthOffset[12];
extern oid oid_rangeTiltUpLimit[12];
extern oid oid_rangeTiltDownLimit[12];
extern oid oid_rangeZoomLimit[12];
extern oid oid_rangeMinimumPanStepAngle[12];
extern oid oid_rangeMinimumTiltStepAngle[12];
extern oid oid_timeoutPan[12];
extern oid oid_timeoutTilt[12];
extern oid oid_timeoutZoom[12];
extern oid oid_positionPan[12];
extern oid oid_positionTilt[12];
extern oid oid_positionZoomLens[12];

// NTCIP 1205: lens
extern oid oid_rangeFocusLimit[12];
extern oid oid_rangeIrisLimit[12];
extern oid oid_timeoutFocus[12];
extern oid oid_timeoutIris[12];
extern oid oid_positionFocusLens[12];
extern oid oid_positionIrisLens[12];
extern oid oid_systemLensFeatureControl[12];
extern oid oid_systemLensFeatureStatus[12];
extern oid oid_systemLensEquipped[12];

// NTCIP 1205: presets
extern oid oid_rangeMaximumPreset[12];
extern oid oid_presetGotoPosition[12];
extern oid oid_presetStorePosition[12];

// NTCIP 1205: inputs and outputs. The alarm status is stored with an instance, as the vendor scalars are.
extern oid oid_alarmStatus[13];
extern oid oid_inputStatus[12];
extern oid oid_outputStatus[12];
extern oid oid_outputControl[12];

#endif
