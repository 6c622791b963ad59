// SPDX-License-Identifier: Apache-2.0
#include "model.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "netsnmp_types.h"
#include "object_oids.h"
#include "oid_text.h"

namespace wrong {

using snmp::Varbind;

namespace {

constexpr int kCircle = 36000;
constexpr double kMostPosition = 65535;
constexpr std::int64_t kMostTimeout = 65535;
constexpr double kSpeedUnit = 20; ///< positions per second and unit of speed

constexpr const char *kModuleRow = ".1.3.6.1.4.1.1206.4.2.6.1.3.1.";
constexpr const char *kPublicAlarmStatus = ".1.3.6.1.4.1.1206.4.2.7.6.1.0";

/** Makes the check of an INTEGER within limits. */
std::function<long(const Varbind &)> integerFrom(std::int64_t lowest, std::int64_t highest) {
    return [=](const Varbind &value) -> long {
        if (value.type != snmp::Type::Integer) {
            return SNMP_ERR_WRONGTYPE;
        }
        return value.number < lowest || value.number > highest ? SNMP_ERR_WRONGVALUE : SNMP_ERR_NOERROR;
    };
}

/** Makes the check of an OCTET STRING of a size. */
std::function<long(const Varbind &)> octetsOf(std::size_t size, const std::function<bool(const std::string &)> &valid) {
    return [=](const Varbind &value) -> long {
        if (value.type != snmp::Type::Octets) {
            return SNMP_ERR_WRONGTYPE;
        }
        if (value.octets.size() != size) {
            return SNMP_ERR_WRONGLENGTH;
        }
        return valid(value.octets) ? SNMP_ERR_NOERROR : SNMP_ERR_WRONGVALUE;
    };
}

Instance constant(Varbind value) {
    Instance instance;
    instance.read = [value = std::move(value)] { return value; };
    return instance;
}

/** An instance that holds what was written. */
Instance stored(const std::shared_ptr<Varbind> &value, std::function<long(const Varbind &)> check) {
    return {[value] { return *value; }, true, std::move(check), [value](const Varbind &written) { *value = written; }};
}

unsigned int octetAt(const std::string &octets, std::size_t index) {
    return static_cast<unsigned char>(octets.at(index));
}

std::string oneOctet(unsigned int value) {
    return std::string(1, static_cast<char>(value));
}

/** The command of octets that may be fewer than four. */
ptz::PositionCommand commandOf(std::string octets, ptz::ByteOrder order) {
    octets.resize(ptz::kCommandSize, '\0');
    return ptz::decode(octets, order);
}

template <std::size_t Size>
unsigned int bitsOf(const std::array<bool, Size> &states) {
    unsigned int bits = 0;
    for (std::size_t i = 0; i < Size; ++i) {
        bits |= static_cast<unsigned int>(states.at(i)) << i;
    }
    return bits;
}

} // namespace

Varbind number(std::int64_t value) {
    return snmp::integer("", value);
}

Varbind octets(const std::string &value) {
    return snmp::octetString("", value);
}

long checkCommand(const Varbind &value, const ptz::Axis &axis, ptz::ByteOrder order) {
    if (value.type != snmp::Type::Octets) {
        return SNMP_ERR_WRONGTYPE;
    }
    if (value.octets.size() > ptz::kCommandSize) {
        return SNMP_ERR_WRONGLENGTH;
    }
    try {
        const ptz::PositionCommand command = commandOf(value.octets, order);
        const bool hasPosition = command.mode == ptz::Mode::Absolute || command.mode == ptz::Mode::Delta;
        const bool turns = axis.range.unit == ptz::Unit::Degrees;
        return hasPosition && turns && command.position >= kCircle ? SNMP_ERR_WRONGVALUE : SNMP_ERR_NOERROR;
    } catch (const std::invalid_argument &) {
        return SNMP_ERR_WRONGVALUE;
    }
}

Model::Model(const Dialect &dialectOfAgent) : dialect(dialectOfAgent) {
    addScalars();
    addRanges();
    addTimeouts();
    addPresets();
    addPositions();
    addLens();
    addOutputs();
    addTables();
    addModules();
}

Instance &Model::add(const std::string &name, const std::string &oid, Instance instance) {
    const Numbers numbers = snmp::parseOid(oid);
    names_.insert({name, numbers});
    return instances[numbers] = std::move(instance);
}

Instance &Model::named(const std::string &name) {
    return instances.at(numbersOf(name));
}

const Numbers &Model::numbersOf(const std::string &name) const {
    return names_.at(name);
}

void Model::hold(const std::string &name, std::int64_t value) {
    named(name).read = [value] { return number(value); };
}

void Model::hold(const std::string &name, const std::string &value) {
    named(name).read = [value] { return octets(value); };
}

void Model::addScalars() {
    for (const auto &[oid, text] : {std::pair{oids::sysDescr, "Camera"}, std::pair{oids::sysContact, "nobody"}}) {
        add(oid, oid, constant(octets(text)));
    }
    const Clock::time_point start = Clock::now();
    Instance upTime;
    upTime.read = [start] {
        const auto time = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count();
        return Varbind{"", snmp::Type::TimeTicks, time / 10, ""};
    };
    add("sysUpTime", oids::sysUpTime, upTime);
    for (const auto &[name, oid] : {std::pair{"modelNumber", oids::modelNumber},
                                    {"modelName", oids::modelName},
                                    {"serialNumber", oids::serialNumber},
                                    {"fwVersion", oids::fwVersion},
                                    {"swVersion", oids::swVersion},
                                    {"hwVersion", oids::hwVersion}}) {
        add(name, oid, constant(octets(std::string("W-") + name)));
    }
    Instance temperature;
    temperature.read = [this]() -> Varbind {
        if (isAway) {
            isAway = false;
            return {"", snmp::Type::NoSuchInstance, 0, ""};
        }
        return {"", snmp::Type::Gauge32, 31, ""};
    };
    add("temperature", oids::temperature, temperature);
    add("power", oids::power, constant(number(0)));
    add("voltage", oids::voltage, constant(number(0)));
    const auto restart = std::make_shared<Varbind>(number(0));
    add("rebootDevice", oids::rebootDevice, stored(restart, integerFrom(INT32_MIN, INT32_MAX))).write =
        [this](const Varbind &value) {
            restarts += value.number == 1 ? 1 : 0;
            isAway = value.number == 1;
        };
}

void Model::addRanges() {
    constexpr std::int64_t kTiltDown = 27000;
    constexpr std::int64_t kSigned = 65536;
    struct Range {
        const char *name;
        const char *oid;
        std::int64_t value;
    };
    for (const auto &[name, oid, value] :
         {Range{"rangeMaximumPreset", oids::rangeMaximumPreset, 64},
          Range{"rangePanLeftLimit", oids::rangePanLeftLimit, 0},
          Range{"rangePanRightLimit", oids::rangePanRightLimit, kCircle - 1},
          Range{"rangePanHomePosition", oids::rangePanHomePosition, dialect.isVendors ? kMostTimeout : 0},
          Range{"rangeTiltUpLimit", oids::rangeTiltUpLimit, 9000},
          Range{"rangeTiltDownLimit", oids::rangeTiltDownLimit, dialect.isVendors ? 33000 - kSigned : kTiltDown},
          Range{"rangeZoomLimit", oids::rangeZoomLimit, kMostTimeout},
          Range{"rangeFocusLimit", oids::rangeFocusLimit, kMostTimeout},
          Range{"rangeIrisLimit", oids::rangeIrisLimit, kMostTimeout},
          Range{"rangeMinimumPanStepAngle", oids::rangeMinimumPanStepAngle, 1},
          Range{"rangeMinimumTiltStepAngle", oids::rangeMinimumTiltStepAngle, 1}}) {
        add(name, oid, constant(number(value)));
    }
    const auto north = std::make_shared<Varbind>(number(0));
    add("rangeTrueNorthOffset", oids::rangeTrueNorthOffset, stored(north, integerFrom(0, kCircle - 1)));
}

void Model::addTimeouts() {
    constexpr std::array kNames = {"timeoutPan", "timeoutTilt", "timeoutZoom", "timeoutFocus", "timeoutIris"};
    for (std::size_t place = 0; place < kNames.size(); ++place) {
        add(kNames.at(place), ptz::axes().at(place).timeoutOid,
            {[this, place] { return number(axis(place).timeout); }, true, integerFrom(0, kMostTimeout),
             [this, place](const Varbind &value) { axis(place).timeout = value.number; }});
    }
}

void Model::addPresets() {
    const auto addPreset = [this](const char *name, const char *oid, const std::function<void(std::int64_t)> &effect) {
        const auto last = std::make_shared<std::int64_t>(0);
        add(name, oid,
            {[this, last] {
                 return dialect.isVendors ? octets(oneOctet(static_cast<unsigned int>(*last))) : number(*last);
             },
             true, integerFrom(0, 255),
             [last, effect](const Varbind &value) {
                 *last = value.number;
                 effect(value.number);
             }});
    };
    for (const std::int64_t shipped : {1, 2}) {
        presets[shipped].fill(static_cast<double>(shipped) * 1000);
    }
    addPreset("presetGotoPosition", oids::presetGotoPosition, [this](std::int64_t preset) {
        const auto found = presets.find(preset);
        for (std::size_t i = 0; found != presets.end() && i < ptz::kAxisCount; ++i) {
            axis(i).speed = 0;
            axis(i).position = found->second.at(i);
        }
    });
    addPreset("presetStorePosition", oids::presetStorePosition, [this](std::int64_t preset) {
        for (std::size_t i = 0; i < ptz::kAxisCount; ++i) {
            presets[preset].at(i) = positionOf(i);
        }
    });
}

void Model::addPositions() {
    constexpr std::array kNames = {"positionPan", "positionTilt", "positionZoomLens", "positionFocusLens",
                                   "positionIrisLens"};
    for (std::size_t place = 0; place < kNames.size(); ++place) {
        axis(place).command.assign(ptz::kCommandSize, '\0');
        const ptz::Axis &about = ptz::axes().at(place);
        add(kNames.at(place), about.positionOid,
            {[this, place] { return octets(positionOctets(place)); }, true,
             [this, &about](const Varbind &value) { return checkCommand(value, about, dialect.order); },
             [this, place](const Varbind &value) { move(place, value.octets); }});
    }
}

std::string Model::positionOctets(std::size_t place) {
    if (!dialect.answersPosition) {
        return axis(place).command;
    }
    return ptz::encode({ptz::Mode::Absolute, 0, static_cast<std::uint16_t>(std::lround(positionOf(place)))},
                       dialect.order);
}

void Model::addLens() {
    constexpr unsigned int kBoth = ptz::kAutomaticFocus | ptz::kAutomaticIris;
    constexpr unsigned int kOn = 0x80;
    const auto onlyKnown = [](unsigned int bits) { return (bits & ~kBoth) == 0; };
    const auto last = std::make_shared<Varbind>(octets(std::string(2, '\0')));
    add("systemLensFeatureControl", oids::systemLensFeatureControl,
        stored(last, octetsOf(2,
                              [onlyKnown](const std::string &value) {
                                  return onlyKnown(octetAt(value, 0)) && (octetAt(value, 1) & ~kOn) == 0;
                              })))
        .write = [this, last](const Varbind &value) {
        *last = value;
        const unsigned int features = octetAt(value.octets, 0);
        automatic = octetAt(value.octets, 1) == kOn ? automatic | features : automatic & ~features;
    };
    Instance status;
    status.read = [this] { return octets(oneOctet(automatic)); };
    add("systemLensFeatureStatus", oids::systemLensFeatureStatus, status);
    const auto equipped = std::make_shared<Varbind>(octets(oneOctet(kBoth)));
    add("systemLensEquipped", oids::systemLensEquipped,
        stored(equipped, octetsOf(1, [onlyKnown](const std::string &value) { return onlyKnown(octetAt(value, 0)); })));
}

void Model::addOutputs() {
    add("alarmStatus", dialect.isVendors ? oids::alarmStatus : kPublicAlarmStatus, constant(octets(oneOctet(0))));
    Instance input;
    input.read = [this] { return octets(oneOctet(bitsOf(inputs))); };
    add("inputStatus", oids::inputStatus, input);
    Instance output;
    output.read = [this] { return octets(oneOctet(bitsOf(relays))); };
    add("outputStatus", oids::outputStatus, output);
    const auto last = std::make_shared<Varbind>(octets(std::string(2, '\0')));
    add("outputControl", oids::outputControl,
        stored(last, octetsOf(2,
                              [this](const std::string &value) {
                                  return octetAt(value, 0) >= 1 && octetAt(value, 0) <= relays.size();
                              })))
        .write = [this, last](const Varbind &value) {
        *last = value;
        relays.at(octetAt(value.octets, 0) - 1) = octetAt(value.octets, 1) != 0;
    };
}

void Model::addTables() {
    const auto addRow = [this](const char *prefix, const std::array<const char *, 3> &columns, std::size_t row,
                               const Instance &state) {
        const std::string end = row == 0 ? "" : "." + std::to_string(row + 1);
        const auto place = static_cast<unsigned int>(row) + 1;
        add(std::string(prefix) + "Kind" + end, oids::row(columns[0], place), constant(octets("GPIO")));
        add(std::string(prefix) + "Number" + end, oids::row(columns[1], place),
            constant(number(static_cast<std::int64_t>(row))));
        add(std::string(prefix) + "State" + end, oids::row(columns[2], place), state);
    };
    for (std::size_t row = 0; row < inputs.size(); ++row) {
        Instance state;
        state.read = [this, row] { return number(inputs.at(row) ? 1 : 0); };
        addRow("alarmStates", {oids::alarmStatesKind, oids::alarmStatesNumber, oids::alarmStatesState}, row, state);
    }
    for (std::size_t row = 0; row < relays.size(); ++row) {
        const Instance state = {[this, row] { return number(relays.at(row) ? 1 : 0); }, true, integerFrom(0, 255),
                                [this, row](const Varbind &value) { relays.at(row) = value.number != 0; }};
        addRow("relayStates", {oids::relayStatesKind, oids::relayStatesNumber, oids::relayStatesState}, row, state);
    }
}

void Model::addModules() {
    const Varbind node =
        dialect.isVendors ? octets("1.3.6.1.4.1.1206.4.2.7") : Varbind{"", snmp::Type::Oid, 0, oids::kCctvSubtree};
    const std::string row = dialect.isVendors ? ".0" : ".1";
    const std::vector<std::pair<const char *, Varbind>> columns = {
        {"moduleNumber", number(1)},           {"moduleDeviceNode", node},
        {"moduleMake", octets("W")},           {"moduleModel", octets("W-1")},
        {"moduleVersion", octets("20260101")}, {"moduleType", number(2)}};
    add("maxModules", oids::maxModules, constant(number(1)));
    for (std::size_t i = 0; i < columns.size(); ++i) {
        add(columns[i].first, kModuleRow + std::to_string(i + 1) + row, constant(columns[i].second));
    }
}

void Model::move(std::size_t place, const std::string &octets) {
    const ptz::PositionCommand command = commandOf(octets, dialect.order);
    AxisState &state = axis(place);
    const bool turns = ptz::axes().at(place).range.unit == ptz::Unit::Degrees;
    settle(place);
    const double now = positionOf(place);
    state.command = octets;
    if (command.mode == ptz::Mode::Stop && !obeysStops) {
        return;
    }
    state.position = now;
    state.speed = command.mode == ptz::Mode::Continuous ? (reverses ? -command.speed : command.speed) : 0;
    state.started = Clock::now();
    if (command.mode == ptz::Mode::Absolute && obeysAbsolutes) {
        state.position = command.position;
    } else if (command.mode == ptz::Mode::Delta && obeysDeltas) {
        state.position += command.speed < 0 ? -command.position : ptz::signedOffset(command.position);
        state.position =
            turns ? std::fmod(state.position + kCircle, kCircle) : std::clamp(state.position, 0.0, kMostPosition);
    }
}

void Model::settle(std::size_t place) {
    AxisState &state = axis(place);
    const auto end = state.started + std::chrono::milliseconds(state.timeout);
    if (state.speed != 0 && obeysTimeouts && state.timeout != 0 && Clock::now() >= end) {
        state.position += state.speed * kSpeedUnit * static_cast<double>(state.timeout) / 1000;
        state.speed = 0;
    }
}

bool Model::isMoving(std::size_t place) {
    settle(place);
    return axis(place).speed != 0;
}

double Model::positionOf(std::size_t place) {
    settle(place);
    const AxisState &state = axis(place);
    const std::chrono::duration<double> time = Clock::now() - state.started;
    const double position = state.position + (state.speed != 0 ? state.speed * kSpeedUnit * time.count() : 0);
    return ptz::axes().at(place).range.unit == ptz::Unit::Degrees
               ? std::fmod(std::fmod(position, kCircle) + kCircle, kCircle)
               : std::clamp(position, 0.0, kMostPosition);
}

} // namespace wrong
