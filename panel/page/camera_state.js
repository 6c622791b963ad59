// SPDX-License-Identifier: Apache-2.0
// Reading the camera's state, as `quarnsnmp-camctl state` prints it.

/** Returns the fields of a service's first target, or null. */
export function firstTarget(state, service) {
    const targets = state?.services?.[service]?.targets;
    return targets ? (Object.values(targets)[0] ?? null) : null;
}

/** Returns [id, fields] of all targets of a service. */
export function targetsOf(state, service) {
    return Object.entries(state?.services?.[service]?.targets ?? {});
}

const kServices = {
    pan: ['positioning'],
    tilt: ['positioning'],
    zoom: ['positioning', 'zoom_stepper'],
    focus: ['lens_focus', 'focus_stepper'],
    iris: ['iris'],
};

/** Returns the service that moves an axis, or null if the camera has none. */
export function serviceOf(state, axis) {
    return kServices[axis].find((service) => state?.services?.[service]) ?? null;
}

/** Returns the axes that the camera has. */
export function axesOf(state) {
    return Object.keys(kServices).filter((axis) => serviceOf(state, axis) !== null);
}

/** Returns an axis or a drive of the lens: {position, minimum, maximum, moving, ...}, or null. */
export function driveOf(state, axis) {
    const service = serviceOf(state, axis);
    const fields = service ? firstTarget(state, service) : null;
    return (service === 'positioning' ? fields?.[axis] : fields) ?? null;
}

/** Returns whether focus or iris is automatic, or null for a lens without the feature. */
export function isAutomatic(state, axis) {
    const service = axis === 'iris' ? 'exposure' : serviceOf(state, 'focus');
    const fields = service ? firstTarget(state, service) : null;
    return fields ? fields.manualMode === false : null;
}

/** Returns the range of pan or tilt in degrees: the user's limits while they are on, otherwise the mechanics'. */
export function limitsOf(state, axis) {
    const drive = driveOf(state, axis);
    if (!drive) {
        return null;
    }
    const limits = drive.softPosition?.enabled ? drive.softPosition : drive;
    return {
        low: limits.minimum / 1000,
        high: limits.maximum / 1000,
        limited: Boolean(drive.softPosition?.enabled) || !drive.endless,
    };
}

/** Returns the presets: [{number, name, pan, tilt, zoom}] in degrees and as a factor, by number. */
export function presetsOf(state) {
    const presets = firstTarget(state, 'presets_tours')?.presets ?? [];
    return presets
        .map(({number, name, pan, tilt, zoom}) => ({number, name, pan: pan / 1000, tilt: tilt / 1000, zoom: zoom / 10}))
        .sort((one, other) => one.number - other.number);
}

/** Returns the names of services that are down, without those of a restart. */
export function servicesDown(state) {
    return Object.entries(state?.services ?? {})
        .filter(([, service]) => !service.up)
        .map(([name]) => name);
}
