// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Modes and types that handlers are tried with.
 */
#ifndef QUARNSNMP_HANDLER_CHECKS_H
#define QUARNSNMP_HANDLER_CHECKS_H

#include <algorithm>
#include <functional>

#include "handler_requests.h"

/** All modes that the agent knows, and some that nobody knows, without those that a handler serves. */
inline Modes modesExcept(const Modes &served) {
    Modes modes(std::begin(kUnknownModes), std::end(kUnknownModes));
    for (const int mode : Modes{MODE_GET, MODE_GETNEXT, MODE_SET_RESERVE1, MODE_SET_RESERVE2, MODE_SET_ACTION,
                                MODE_SET_COMMIT, MODE_SET_FREE, MODE_SET_UNDO}) {
        if (std::find(served.begin(), served.end(), mode) == served.end()) {
            modes.push_back(mode);
        }
    }
    return modes;
}

/** Runs RESERVE1 on an object's own handler with a value of each ASN.1 type, and the record of that type only. */
inline void reserveEachType(std::string_view instance, const requests::NewValue &value,
                            const std::function<void(int type, const requests::Answer &answer)> &check) {
    for (int type = 0; type <= 0xFF; ++type) {
        SCOPED_TRACE(type);
        scripted::core().clearRecord();
        requests::Request request(instance, value);
        // Set on the finished varbind, since the agent's library does not build varbinds of every type.
        request.info()->requestvb->type = static_cast<unsigned char>(type);
        const requests::Answer answer = request.runOwnHandler(MODE_SET_RESERVE1);
        request.info()->requestvb->type = value.type;
        check(type, answer);
    }
}

#endif
