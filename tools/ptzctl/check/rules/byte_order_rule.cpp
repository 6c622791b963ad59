// SPDX-License-Identifier: Apache-2.0
#include <algorithm>

#include <fmt/format.h>

#include "axis_rules.h"
#include "definitions.h"
#include "octets_text.h"

namespace ptzctl::check {

namespace {

using ptz::ByteOrder;

constexpr int kTrialSpeed = 32;

int swapped(int position) {
    constexpr int kOctet = 256;
    return position % kOctet * kOctet + position / kOctet;
}

/** Returns a position within the limits that is beyond the circle with its octets swapped. */
int tellingPosition(Context &context, const ptz::Axis &axis) {
    for (int position = 0; position < kCircle; ++position) {
        if (swapped(position) >= kCircle && isWithinLimits(context, axis, position)) {
            return position;
        }
    }
    throw NotPossible("its limits hold no position that is invalid in the other order");
}

std::string octetsOf(int position, ByteOrder order) {
    return ptz::encode({ptz::Mode::Absolute, kTrialSpeed, static_cast<std::uint16_t>(position)}, order);
}

/** Outcome of the same position in one order. */
struct Trial {
    bool accepted = false;
    std::string answer; ///< octets of a GET after it
};

Trial attempt(Context &context, MoveGuard &guard, const ptz::Axis &axis, const std::string &octets) {
    const Exchange &exchange = guard.send(axis, octets);
    if (!exchange.valid()) {
        throw Undecided(describeResponse(exchange));
    }
    Trial trial;
    trial.accepted = exchange.response->error == 0;
    if (trial.accepted) {
        trial.answer = context.get(axis.positionOid).varbind.octets;
    }
    return trial;
}

/** Tells which of two orders the camera reads when it takes both: it may answer where it goes. */
std::optional<ByteOrder> orderOfAnswers(const std::string &sentHigh, const Trial &high, const std::string &sentLow,
                                        const Trial &low) {
    const bool changedHigh = high.answer != sentHigh;
    const bool changedLow = low.answer != sentLow;
    if (changedHigh == changedLow) {
        return std::nullopt;
    }
    return changedHigh ? ByteOrder::LowFirst : ByteOrder::HighFirst;
}

/** Tests whether octets are others with the position's octets swapped. */
bool isSwapped(const std::string &octets, const std::string &other) {
    return octets.size() == ptz::kCommandSize && other.size() == ptz::kCommandSize && octets[2] == other[3] &&
           octets[3] == other[2];
}

Detail judgeAxis(Context &context, MoveGuard &guard, const ptz::Axis &axis, std::optional<ByteOrder> &found) {
    const int position = tellingPosition(context, axis);
    const std::string sentHigh = octetsOf(position, ByteOrder::HighFirst);
    const std::string sentLow = octetsOf(position, ByteOrder::LowFirst);
    const Trial high = attempt(context, guard, axis, sentHigh);
    const Trial low = attempt(context, guard, axis, sentLow);
    if (!high.accepted && !low.accepted) {
        throw NotPossible("refuses absolute moves in either order");
    }
    found = high.accepted != low.accepted ? std::optional(high.accepted ? ByteOrder::HighFirst : ByteOrder::LowFirst)
                                          : orderOfAnswers(sentHigh, high, sentLow, low);
    if (!found) {
        throw NotPossible("accepts positions beyond 360.00 degrees, so its order cannot be told");
    }
    const bool isHigh = *found == ByteOrder::HighFirst;
    const std::string &sent = isHigh ? sentHigh : sentLow;
    if (isSwapped((isHigh ? high : low).answer, sent)) {
        return axisDetail(axis, Result::Fail, fmt::format("takes {} and answers it swapped", snmp::hexText(sent)));
    }
    return axisDetail(axis, isHigh ? Result::Pass : Result::Differs,
                      fmt::format("reads {} octet first: takes {} and not {}", isHigh ? "the high" : "the low",
                                  snmp::hexText(sent), snmp::hexText(isHigh ? sentLow : sentHigh)));
}

} // namespace

Finding judgeByteOrder(Context &context) {
    std::vector<ByteOrder> orders;
    Finding finding = judgeAxes(context, [&](MoveGuard &guard, const ptz::Axis &axis, Details &details) {
        if (turns(axis)) {
            std::optional<ByteOrder> found;
            details.push_back(judgeAxis(context, guard, axis, found));
            orders.insert(orders.end(), found.value_or(ByteOrder::HighFirst));
        }
    });
    if (std::adjacent_find(orders.begin(), orders.end(), std::not_equal_to<>()) != orders.end()) {
        finding.result = Result::Fail;
        finding.observation = "pan and tilt have different orders";
    }
    return finding;
}

} // namespace ptzctl::check
