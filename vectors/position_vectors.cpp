// SPDX-License-Identifier: Apache-2.0
#include "position_vectors.h"

#include <algorithm>
#include <array>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "axes.h"
#include "octets_text.h"
#include "oid_text.h"
#include "position_command.h"

namespace vectors {

namespace {

using nlohmann::ordered_json;
using ptz::Axis;
using ptz::ByteOrder;
using ptz::PositionCommand;

constexpr int kSpeed = 64;
constexpr std::array<std::pair<ByteOrder, const char *>, 2> kOrders = {
    {{ByteOrder::LowFirst, "low"}, {ByteOrder::HighFirst, "high"}}};

std::string compactHex(const std::string &octets) {
    std::string text = snmp::hexText(octets);
    text.erase(std::remove(text.begin(), text.end(), ' '), text.end());
    return text;
}

ordered_json axesJson() {
    ordered_json list = ordered_json::array();
    for (const Axis &axis : ptz::axes()) {
        list.push_back({{"axis", axis.name},
                        {"oid", snmp::withoutDot(axis.positionOid)},
                        {"unit", axis.range.unit == ptz::Unit::Degrees ? "degrees" : "percent"}});
    }
    return list;
}

/** Appends a command in both byte orders. @param make  makes the command for an order */
void addCommand(ordered_json &list, const Axis &axis, const std::function<PositionCommand(ByteOrder)> &make) {
    for (const auto &[order, name] : kOrders) {
        const PositionCommand command = make(order);
        list.push_back({{"axis", axis.name},
                        {"byteOrder", name},
                        {"meaning", ptz::describe(axis, command, order)},
                        {"mode", static_cast<int>(command.mode)},
                        {"speed", command.speed},
                        {"position", command.position},
                        {"octets", compactHex(ptz::encode(command, order))}});
    }
}

ordered_json commandsJson() {
    struct Amounts {
        std::vector<double> targets;
        std::vector<double> steps;
    };
    const std::array<Amounts, ptz::kAxisCount> kAmounts = {{{{0, 90, 180, 270, 359.99, -90}, {5, -5, 327.67}},
                                                            {{0, 30, -30, 90, -90}, {0.01, -10}},
                                                            {{0, 50, 100}, {10, -10}},
                                                            {{0, 25, 100}, {50, -50}},
                                                            {{0, 80, 100}, {1, -100}}}};
    ordered_json list = ordered_json::array();
    for (std::size_t i = 0; i < ptz::kAxisCount; ++i) {
        const Axis &axis = ptz::axes().at(i);
        addCommand(list, axis, [](ByteOrder) { return PositionCommand(); });
        for (const double target : kAmounts.at(i).targets) {
            addCommand(list, axis, [&](ByteOrder) { return ptz::commandTo(axis, target, kSpeed); });
        }
        for (const double step : kAmounts.at(i).steps) {
            addCommand(list, axis, [&](ByteOrder) { return ptz::commandBy(axis, step, kSpeed); });
        }
        for (const char *direction : {axis.directions.forward, axis.directions.backward}) {
            for (const int speed : {1, ptz::kFastest}) {
                addCommand(list, axis,
                           [&](ByteOrder order) { return ptz::commandTowards(axis, direction, speed, order); });
            }
        }
    }
    return list;
}

/** Four octets that need not be a valid command. */
std::string octetsOf(int mode, int speed, int position, ByteOrder order) {
    constexpr int kOctet = 256;
    const auto low = static_cast<char>(position % kOctet);
    const auto high = static_cast<char>(position / kOctet);
    const bool lowFirst = order == ByteOrder::LowFirst;
    return {static_cast<char>(mode), static_cast<char>(speed), lowFirst ? low : high, lowFirst ? high : low};
}

/** Appends refused octets in both byte orders, or once if they are the same. */
void addRefused(ordered_json &list, const Axis &axis, const char *reason, int mode, int speed, int position) {
    for (const auto &[order, name] : kOrders) {
        list.push_back({{"axis", axis.name},
                        {"byteOrder", name},
                        {"reason", reason},
                        {"octets", compactHex(octetsOf(mode, speed, position, order))},
                        {"error", "wrongValue"}});
    }
}

ordered_json refusedJson() {
    constexpr int kTurn = 36000;
    constexpr int kMinusOne = 65535;
    ordered_json list = ordered_json::array();
    for (const Axis &axis : ptz::axes()) {
        list.push_back(
            {{"axis", axis.name}, {"reason", "an INTEGER instead of octets"}, {"integer", 1}, {"error", "wrongType"}});
        addRefused(list, axis, "a mode above 3", 4, 0, 0);
        addRefused(list, axis, "a stop with a speed", 0, 5, 0);
        if (axis.range.circle != 0) {
            addRefused(list, axis, "a position of 36000 or more", 2, kSpeed, kTurn);
            addRefused(list, axis, "a negative offset above -29536", 1, kSpeed, kMinusOne);
        }
        if (axis.automatic != 0) {
            for (const char *octets : {"024000", "0240000000"}) {
                list.push_back({{"axis", axis.name},
                                {"reason", "another number of octets than 4"},
                                {"octets", octets},
                                {"error", "wrongValue"}});
            }
        }
    }
    return list;
}

ordered_json responsesJson() {
    const std::vector<std::pair<const char *, const char *>> kResponses = {
        {"pan", "02407869"},    {"pan", "02406978"},   {"pan", "28230000"},  {"pan", "00000000"},  {"pan", "03C00000"},
        {"pan", "05000001"},    {"pan", "024078"},     {"tilt", "027FE880"}, {"tilt", "E8800000"}, {"zoom", "0240FF7F"},
        {"zoom", "01C0991900"}, {"focus", "03810000"}, {"iris", "037F0000"},
    };
    ordered_json list = ordered_json::array();
    for (const auto &[name, text] : kResponses) {
        const Axis &axis = ptz::axisNamed(name);
        const std::string octets = snmp::parseHex(text);
        for (const auto &[order, orderName] : kOrders) {
            ordered_json row = {{"axis", name}, {"byteOrder", orderName}};
            row.update(ptz::octetsJson(axis, octets, order));
            row["octets"] = text;
            row["meaning"] = ptz::describeOctets(axis, octets, order);
            list.push_back(std::move(row));
        }
    }
    return list;
}

} // namespace

ordered_json positionVectors() {
    return {{"version", 1},
            {"axes", axesJson()},
            {"commands", commandsJson()},
            {"refused", refusedJson()},
            {"responses", responsesJson()}};
}

} // namespace vectors
