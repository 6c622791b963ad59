// SPDX-License-Identifier: Apache-2.0
#include "tables.h"

#include <fmt/format.h>

#include "oid_text.h"

namespace ptzctl::check {

namespace {

Walk walkUpTo(Context &context, const std::string &root, std::size_t most) {
    Walk walk;
    std::string last = root;
    while (walk.varbinds.size() < most) {
        const Value &next = context.successor(last);
        walk.error = next.error;
        if (!next.present() || !snmp::isBelow(next.varbind.oid, root)) {
            const bool goesBack = next.present() && !snmp::comesBefore(last, next.varbind.oid);
            walk.disorder = goesBack ? next.varbind.oid : "";
            return walk;
        }
        if (!snmp::comesBefore(last, next.varbind.oid)) {
            walk.disorder = next.varbind.oid;
            return walk;
        }
        walk.varbinds.push_back(next.varbind);
        last = next.varbind.oid;
    }
    walk.ends = false;
    return walk;
}

} // namespace

Walk walkOf(Context &context, const std::string &root) {
    return walkUpTo(context, root, kMostObjects);
}

std::vector<snmp::Varbind> columnOf(Context &context, const std::string &column) {
    constexpr std::size_t kMostRows = 256;
    std::vector<snmp::Varbind> cells = walkUpTo(context, column, kMostRows).varbinds;
    // States change, so the walk tells the rows only.
    for (snmp::Varbind &cell : cells) {
        const Value value = context.get(cell.oid);
        cell = value.varbind;
    }
    return cells;
}

} // namespace ptzctl::check
