// SPDX-License-Identifier: Apache-2.0
// Rules about GETNEXT and GETBULK.
#include <algorithm>
#include <array>

#include <fmt/format.h>

#include "error_status.h"
#include "expected.h"
#include "families.h"
#include "object_oids.h"
#include "oid_text.h"
#include "stable.h"
#include "tables.h"

namespace ptzctl::check {

namespace {

using snmp::Varbind;

constexpr const char *kNext = "RFC 3416, 4.2.2";
constexpr const char *kBulk = "RFC 3416, 4.2.3";

/** Subtrees with the camera's objects, in their order. */
constexpr std::array<const char *, 3> kSubtrees = {".1.3.6.1.4.1.1206.4.2.6", oids::kCctvSubtree, oids::kVendorSubtree};

std::string nameOf(const std::string &oid) {
    return ptz::instanceAt(oid).name;
}

/** Judges the walk through each subtree. */
template <typename Judge>
Finding judgeWalks(Context &context, Judge judge) {
    std::vector<Detail> details;
    for (const char *root : kSubtrees) {
        const Walk walk = walkOf(context, root);
        Detail detail = {snmp::withoutDot(root), Result::Pass, fmt::format("{} objects", walk.varbinds.size())};
        judge(walk, detail);
        if (detail.result == Result::Pass && walk.varbinds.empty()) {
            detail.result = Result::NotEquipped;
        }
        details.push_back(detail);
    }
    return summarize(std::move(details));
}

Finding judgeOrder(Context &context) {
    return judgeWalks(context, [](const Walk &walk, Detail &detail) {
        if (!walk.disorder.empty()) {
            const std::string last = walk.varbinds.empty() ? detail.object : nameOf(walk.varbinds.back().oid);
            detail.result = Result::Fail;
            detail.observation = fmt::format("{} as the successor of {}", nameOf(walk.disorder), last);
        }
    });
}

Finding judgeEnd(Context &context) {
    Finding finding = judgeWalks(context, [](const Walk &walk, Detail &detail) {
        if (!walk.ends) {
            detail.result = Result::Fail;
            detail.observation = fmt::format("no end after {} objects", kMostObjects);
        } else if (walk.error != 0) {
            detail.result = Result::Fail;
            detail.observation =
                fmt::format("ended by {} after {} objects", snmp::describeError(walk.error).name, walk.varbinds.size());
        }
    });
    return finding;
}

Finding judgeViewEnd(Context &context) {
    const std::string beyond = ".2.100";
    const snmp::Response &response = context.read(getNextRequest({beyond}));
    const bool isEnd = response.error == 0 && response.varbinds.front().type == snmp::Type::EndOfMibView;
    if (!isEnd) {
        const std::string got =
            response.error != 0 ? snmp::describeError(response.error).name : nameOf(response.varbinds.front().oid);
        return {Result::Fail, fmt::format("{} beyond the last object", got), {}};
    }
    const std::string &oid = response.varbinds.front().oid;
    return {oid == beyond ? Result::Pass : Result::Fail,
            oid == beyond ? "endOfMibView" : fmt::format("endOfMibView of {}", snmp::withoutDot(oid)),
            {}};
}

/** Tests for a walk that has come to its end in order. */
bool isSound(const Walk &walk) {
    return walk.disorder.empty() && walk.ends && walk.error == 0;
}

/** Looks for each object that a GET answers in the walks. */
Finding judgeCompleteness(Context &context) {
    std::vector<std::string> walked;
    bool isWhole = true;
    for (const char *root : kSubtrees) {
        const Walk walk = walkOf(context, root);
        isWhole = isWhole && isSound(walk);
        for (const Varbind &varbind : walk.varbinds) {
            walked.push_back(varbind.oid);
        }
    }
    std::vector<Detail> details;
    for (const Expected &expected : expectedObjects()) {
        const Located located = locate(context, expected);
        if (!located.readable()) {
            continue;
        }
        const bool isFound = std::find(walked.begin(), walked.end(), located.oid) != walked.end();
        if (isFound || isWhole) {
            details.push_back({expected.name, isFound ? Result::Pass : Result::Fail,
                               isFound ? "found" : "answers a GET, but GETNEXT passes it"});
        } else {
            details.push_back({expected.name, Result::Skipped, "the walk ended before"});
        }
    }
    return summarize(std::move(details));
}

/** Compares two answers of an object, whose value may change between them unless it is stable. */
bool isSame(const Varbind &left, const Varbind &right) {
    return left.type == right.type && (!isStable(left.oid) || left == right);
}

/** Compares each object of the walks with a GET. */
Finding judgeValues(Context &context) {
    std::vector<Detail> details;
    for (const char *root : kSubtrees) {
        const Walk walk = walkOf(context, root);
        if (!walk.ends) {
            details.push_back({snmp::withoutDot(root), Result::Skipped, "the walk has no end"});
            continue;
        }
        for (const Varbind &varbind : walk.varbinds) {
            const Value &value = context.value(varbind.oid);
            Detail detail = {nameOf(varbind.oid), Result::Pass, "same"};
            if (!value.present()) {
                detail = {detail.object, Result::Fail,
                          value.error != 0 ? "a GET answers " + snmp::describeError(value.error).name
                                           : "a GET answers " + snmp::typeName(value.varbind.type)};
            } else if (!isSame(value.varbind, varbind) && !changesByItself(context, varbind.oid)) {
                detail = {detail.object, Result::Fail,
                          fmt::format("GETNEXT answers {}, GET {}", snmp::valueText(varbind),
                                      snmp::valueText(value.varbind))};
            }
            details.push_back(detail);
        }
    }
    return summarize(std::move(details));
}

/** Returns the successors of an OID as single GETNEXTs answer them; the last one may be endOfMibView. */
std::vector<Varbind> chainOf(Context &context, const std::string &oid, std::size_t count) {
    std::vector<Varbind> chain;
    std::string last = oid;
    while (chain.size() < count) {
        const Value &next = context.successor(last);
        if (next.error != 0) {
            return chain;
        }
        const bool isOrdered = next.present() && snmp::comesBefore(last, next.varbind.oid);
        chain.push_back(next.varbind);
        last = next.varbind.oid;
        if (!isOrdered) {
            return chain;
        }
    }
    return chain;
}

/** Compares a varbind of a GETBULK with that of a GETNEXT. @return the difference, or an empty text */
std::string differenceOf(Context &context, const Varbind &bulk, const Varbind &next) {
    if (bulk.oid != next.oid) {
        return fmt::format("{} instead of {}", nameOf(bulk.oid), nameOf(next.oid));
    }
    // A GETNEXT that differs from a GET is judged by another rule.
    const bool isEnd = bulk.type == snmp::Type::EndOfMibView;
    const bool isRight =
        isSame(bulk, next) ||
        (!isEnd && (isSame(bulk, context.value(bulk.oid).varbind) || changesByItself(context, bulk.oid)));
    return isRight
               ? ""
               : fmt::format("{} = {} instead of {}", nameOf(bulk.oid), snmp::valueText(bulk), snmp::valueText(next));
}

/** Compares GETBULKs of one name, one after the other through a subtree, with the successors. */
Detail judgeBulkWalk(Context &context, const std::string &root) {
    constexpr int kRepetitions = 10;
    Detail detail = {snmp::withoutDot(root), Result::Pass, ""};
    std::size_t count = 0;
    const Walk walk = walkOf(context, root);
    const std::vector<Varbind> &walked = walk.varbinds;
    if (!walk.ends) {
        return {detail.object, Result::Skipped, "the walk has no end"};
    }
    for (std::string last = root; count < walked.size();) {
        const snmp::Response &response = context.read(getBulkRequest({last}, 0, kRepetitions));
        if (response.error != 0) {
            return {detail.object, Result::Fail,
                    fmt::format("{} after {} objects", snmp::describeError(response.error).name, count)};
        }
        for (std::size_t i = 0; i < response.varbinds.size() && count < walked.size(); ++i, ++count) {
            const std::string difference = differenceOf(context, response.varbinds[i], walked[count]);
            if (!difference.empty()) {
                return {detail.object, Result::Fail, difference};
            }
        }
        last = walked[count - 1].oid;
    }
    detail.observation = fmt::format("{} objects", count);
    return count == 0 ? Detail{detail.object, Result::NotEquipped, "empty"} : detail;
}

Finding judgeBulk(Context &context) {
    std::vector<Detail> details;
    details.reserve(std::size(kSubtrees));
    for (const char *root : kSubtrees) {
        details.push_back(judgeBulkWalk(context, root));
    }
    return summarize(std::move(details));
}

/** A GETBULK with a name that is not repeated. */
Finding judgeBulkMixed(Context &context) {
    constexpr std::size_t kRepetitions = 3;
    const std::string first = std::string(oids::kCctvSubtree) + ".1";
    const std::string second = std::string(oids::kCctvSubtree) + ".2";
    const std::vector<Varbind> single = chainOf(context, first, 1);
    const std::vector<Varbind> repeated = chainOf(context, second, kRepetitions);
    std::vector<Varbind> expected = single;
    expected.insert(expected.end(), repeated.begin(), repeated.end());
    const snmp::Response &response = context.read(getBulkRequest({first, second}, 1, static_cast<int>(kRepetitions)));
    // So few short values fit into the smallest message that every agent must be able to send.
    if (response.error != 0 || response.varbinds.size() < expected.size()) {
        return {Result::Fail,
                response.error != 0
                    ? snmp::describeError(response.error).name
                    : fmt::format("{} varbinds instead of {}", response.varbinds.size(), expected.size()),
                {}};
    }
    for (std::size_t i = 0; i < expected.size(); ++i) {
        const std::string difference = differenceOf(context, response.varbinds[i], expected[i]);
        if (!difference.empty()) {
            return {Result::Fail, difference, {}};
        }
    }
    return {Result::Pass, fmt::format("{} varbinds", response.varbinds.size()), {}};
}

/** GETBULKs with unusual numbers. */
Finding judgeBulkLimits(Context &context) {
    constexpr int kMany = 1000;
    const std::string root = oids::kCctvSubtree;
    std::vector<Detail> details;
    const auto judge = [&](const char *title, const Request &request, std::size_t least, std::size_t most) {
        const snmp::Response &response = context.read(request);
        const std::size_t count = response.varbinds.size();
        const bool isRight = response.error == 0 && count >= least && count <= most;
        details.push_back(
            {title, isRight ? Result::Pass : Result::Fail,
             response.error != 0 ? snmp::describeError(response.error).name : fmt::format("{} varbinds", count)});
    };
    judge("no repetitions", getBulkRequest({root}, 0, 0), 0, 0);
    judge("more non-repeaters than names", getBulkRequest({root}, 10, 10), 1, 1);
    judge("1000 repetitions", getBulkRequest({root}, 0, kMany), 1, kMany);
    return summarize(std::move(details));
}

} // namespace

std::vector<Rule> walkRules() {
    return {
        {"walk-order", Level::Reads, "all objects", "each successor follows the OID that it succeeds", kNext,
         judgeOrder},
        {"walk-end", Level::Reads, "all objects", "a walk through a subtree ends without an error", kNext, judgeEnd},
        {"walk-view-end", Level::Reads, "all objects", "beyond the last object, GETNEXT answers endOfMibView", kNext,
         judgeViewEnd},
        {"walk-complete", Level::Reads, "all objects", "GETNEXT finds each object that GET answers", kNext,
         judgeCompleteness},
        {"walk-values", Level::Reads, "all objects", "GET answers each object that GETNEXT finds, with the same value",
         kNext, judgeValues},
        {"bulk-values", Level::Reads, "all objects", "GETBULK answers what GETNEXT answers", kBulk, judgeBulk},
        {"bulk-mixed", Level::Reads, "cctvRange, cctvTimeout",
         "GETBULK answers the non-repeaters once and the others repeatedly, none missing", kBulk, judgeBulkMixed},
        {"bulk-limits", Level::Reads, "all objects", "GETBULK answers any numbers of names and repetitions", kBulk,
         judgeBulkLimits},
    };
}

} // namespace ptzctl::check
