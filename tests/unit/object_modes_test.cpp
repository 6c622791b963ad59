// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The modes of every scalar object: the refused ones, a GETNEXT, and the phases of a SET from its check to its UNDO.
 */
#include <optional>

#include "every_call.h"
#include "handler_requests.h"
#include "lens_drives.h"

namespace {

struct Feature {
    bool (*init)(void *ipcCookie);
    void (*deinit)();
};

/** Levels of the lines of a handler; 0 stands for no line. */
struct LineLevels {
    int enter;
    int unknownMode;
    int done;
    int doneAfterError;
};

constexpr LineLevels kAllLines{7, 3, 7, 7};
constexpr LineLevels kNotDoneAfterError{7, 3, 7, 0};
constexpr LineLevels kNoLines{0, 0, 0, 0};

/** A value as a SET carries it, and as a GET answers it. */
struct Sample {
    NewValue set;
    NewValue answered;
};

Sample same(const NewValue &value) {
    return {value, value};
}

struct Writable {
    Sample zero;
    Sample first;
    Sample second;
    int wrongTypeReturned = SNMP_ERR_WRONGTYPE;
    bool isPrivate = true;               ///< a GET does not answer a value before its COMMIT
    std::optional<NewValue> undone = {}; ///< answer after an UNDO; none for the last committed value
};

struct ObjectRow : Row { // the name is the handler's, without its prefix
    Feature feature;
    std::string instance;
    LineLevels lines;
    Modes served{MODE_GET, MODE_GETNEXT};
    int unknownModeError = SNMP_ERR_NOERROR; ///< set on the request
    Calls firstCalls = {};                   ///< in every mode
    bool isReadOnly = true;                  ///< by its registration
    std::optional<Writable> writable = {};
};

const Modes kAllModes{MODE_GET,        MODE_GETNEXT,    MODE_SET_RESERVE1, MODE_SET_RESERVE2,
                      MODE_SET_ACTION, MODE_SET_COMMIT, MODE_SET_FREE,     MODE_SET_UNDO};

ObjectRow setInto(ObjectRow row, const Writable &writable) {
    row.served = kAllModes;
    row.isReadOnly = false;
    row.writable = writable;
    return row;
}

Writable texts(const std::string &first, const std::string &second) {
    return {same(NewValue::text(std::string(first.size(), '\0'))), same(NewValue::text(first)),
            same(NewValue::text(second))};
}

Writable integers(long first, long second) {
    return {same(NewValue::integer(0)), same(NewValue::integer(first)), same(NewValue::integer(second))};
}

void addLens(std::vector<ObjectRow> &rows) {
    for (const lens_tests::Drive &drive : lens_tests::allDrives()) {
        for (std::size_t i = 0; i < drive.objects.size(); ++i) {
            const lens_tests::Object &object = drive.objects.at(i);
            ObjectRow row{
                {std::string(object.handler).substr(7)}, {drive.init, drive.deinit}, object.instance(), kAllLines};
            switch (i) {
            case 2:
                row = setInto(row, texts(command(0, 0, 0x3412), command(2, -5, 0x1234)));
                break;
            case 3:
                row.lines = {7, 3, 6, 6};
                row = setInto(row, texts(octets({0, 0x80}), octets({0x40, 0x80})));
                break;
            case 4:
                row.lines = {7, 7, 7, 0};
                break;
            case 5:
                row = setInto(row, texts(octets({0x40}), octets({0xC0})));
                break;
            default:
                row.lines = kNotDoneAfterError;
                row.isReadOnly = i == 0;
            }
            rows.push_back(row);
        }
    }
}

void addPositioning(std::vector<ObjectRow> &rows) {
    const Feature feature{InitPositioning, DeinitPositioning};
    const std::string arc = "1.3.6.1.4.1.1206.4.2.7.";
    for (const auto &[name, end] :
         {std::pair("PanLeftLimit", "2"), std::pair("PanRightLimit", "3"), std::pair("PanHomePosition", "4"),
          std::pair("TiltUpLimit", "6"), std::pair("TiltDownLimit", "7"), std::pair("ZoomLimit", "8"),
          std::pair("MinimumPanStepAngle", "11"), std::pair("MinimumTiltStepAngle", "12")}) {
        rows.push_back({{"range"s + name}, feature, arc + "1." + end + ".0", kAllLines});
    }
    ObjectRow north{{"rangeTrueNorthOffset"}, feature, arc + "1.5.0", kAllLines, {}, SNMP_ERR_GENERR};
    Writable offset = integers(65535, 0);
    offset.wrongTypeReturned = SNMP_ERR_NOERROR;
    offset.isPrivate = false;
    offset.undone = NewValue::integer(65535); // the value of the ACTION stays
    rows.push_back(setInto(north, offset));
    for (const auto &[axis, end] : {std::pair("Pan", "1.0"), std::pair("Tilt", "2.0"), std::pair("Zoom", "3.0")}) {
        Writable timeout = integers(700, 65535);
        timeout.wrongTypeReturned = SNMP_ERR_NOERROR;
        rows.push_back(
            setInto({{"timeout"s + axis}, feature, arc + "2." + end, kAllLines, {}, SNMP_ERR_GENERR}, timeout));
        Writable position = texts(command(0, 0, 0x1234), command(3, 5, 0x1234));
        position.wrongTypeReturned = SNMP_ERR_NOERROR;
        const bool isZoom = axis == "Zoom"s;
        rows.push_back(setInto({{"position"s + axis + (isZoom ? "Lens" : "")},
                                feature,
                                arc + "4." + end,
                                kAllLines,
                                {},
                                isZoom ? SNMP_ERR_NOERROR : SNMP_ERR_GENERR},
                               position));
    }
}

void addInputsAndOutputs(std::vector<ObjectRow> &rows) {
    const Feature alarm{InitAlarm, DeinitAlarm};
    const Feature relay{InitRelay, DeinitRelay};
    rows.push_back({{"alarmStatus"}, alarm, "1.3.6.1.4.1.1206.4.2.7.6.1.0.0", kNotDoneAfterError});
    rows.push_back({{"inputStatus"}, alarm, "1.3.6.1.4.1.1206.4.2.7.7.1.0", kNotDoneAfterError});
    rows.push_back({{"outputStatus"}, relay, "1.3.6.1.4.1.1206.4.2.7.8.1.0", kNotDoneAfterError});
    // Commands to relays that do not exist.
    rows.push_back(
        setInto({{"outputControl"}, relay, "1.3.6.1.4.1.1206.4.2.7.8.2.0", {7, 0, 7, 0}, {}, SNMP_ERR_GENERR},
                texts(octets({5, 0x80}), octets({6, 0}))));
    rows.back().writable->isPrivate = false;
}

void addPresets(std::vector<ObjectRow> &rows) {
    const Feature presets{InitPresets, DeinitPresets};
    rows.push_back({{"rangeMaximumPreset"}, presets, "1.3.6.1.4.1.1206.4.2.7.1.1.0", kNotDoneAfterError});
    const auto preset = [](unsigned int number) {
        return Sample{NewValue::integer(number), NewValue::text(octets({number}))};
    };
    for (const auto &[name, end] : {std::pair("presetGotoPosition", "1.0"), std::pair("presetStorePosition", "2.0")}) {
        rows.push_back(setInto({{name}, presets, "1.3.6.1.4.1.1206.4.2.7.3."s + end, kAllLines},
                               {preset(0), preset(6), preset(200)}));
    }
}

/** Objects below the vendor's arc, and those of the module's identity. None of them logs a GET. */
void addCamera(std::vector<ObjectRow> &rows) {
    const std::string arc = "1.3.6.1.4.1.99999.1.1.";
    const auto reading = [&](const char *name, const char *end, const Feature &feature, const std::string &call) {
        rows.push_back({{name}, feature, arc + end, kNoLines, {MODE_GET}, SNMP_ERR_NOERROR, {call}});
    };
    const Feature power{InitPower, DeinitPower};
    reading("temperature", "7.0.0", {InitTemperature, DeinitTemperature},
            "zorva_api_temperature_get_temperature_send(temperature, \"temperature/1\", &)");
    reading("power", "8.0.0", power, "zorva_api_power_get_power_state_send(power, \"power/1\", &)");
    reading("voltage", "9.0.0", power, "zorva_api_power_get_voltage_state_send(power, \"power/1\", &)");

    rows.push_back(
        setInto({{"rebootDevice"}, {InitRebootInfo, DeinitRebootInfo}, arc + "100.0.0", {0, 3, 0, 0}}, integers(7, 9)));
    rows.back().served.erase(rows.back().served.begin() + 1); // no GETNEXT
    rows.back().writable->wrongTypeReturned = SNMP_ERR_NOERROR;
    rows.back().writable->isPrivate = false;
    rows.back().writable->undone = NewValue::integer(0);

    const Feature identity{InitDeviceInfo, DeinitDeviceInfo};
    for (const auto &[name, end] :
         {std::pair("modelNumber", "1"), std::pair("modelName", "2"), std::pair("serialNumber", "3"),
          std::pair("fwVersion", "4"), std::pair("swVersion", "5"), std::pair("hwVersion", "6")}) {
        rows.push_back({{name}, identity, arc + end + ".0.0", kNoLines, {MODE_GET}});
    }
    const Feature module{InitModuleInfo, DeinitModuleInfo};
    for (const auto &[name, end] : {std::pair("maxModules", "2.0"), std::pair("moduleNumber", "3.1.1.0"),
                                    std::pair("moduleDeviceNode", "3.1.2.0"), std::pair("moduleMake", "3.1.3.0"),
                                    std::pair("moduleModel", "3.1.4.0"), std::pair("moduleVersion", "3.1.5.0"),
                                    std::pair("moduleType", "3.1.6.0")}) {
        rows.push_back({{name}, module, "1.3.6.1.4.1.1206.4.2.6.1."s + end, kNoLines, {MODE_GET}});
    }
}

std::vector<ObjectRow> objectRows() {
    std::vector<ObjectRow> rows;
    addLens(rows);
    addPositioning(rows);
    addInputsAndOutputs(rows);
    addPresets(rows);
    addCamera(rows);
    return rows;
}

std::vector<ObjectRow> writableRows() {
    std::vector<ObjectRow> rows;
    for (const ObjectRow &row : objectRows()) {
        if (row.writable) {
            rows.push_back(row);
        }
    }
    return rows;
}

/** A feature on a camera that answers every call, and one of its objects. */
class ObjectModesTest : public ModuleTest, public testing::WithParamInterface<ObjectRow> {
protected:
    void SetUp() override {
        openCore();
        for (const std::string &service : scripted::everyService()) {
            core().targets(service, {service + "/1"});
        }
        for (const scripted::Call &call : scripted::everyCall()) {
            core().answer(call.function, call.outputs);
        }
        ASSERT_TRUE(GetParam().feature.init(GetIpcCookie()));
        get(GetParam().instance); // the first request of all may ask the camera for more
        core().clearRecord();
    }
    void TearDown() override {
        if (GetParam().writable) {
            commit(GetParam().writable->zero);
        }
        GetParam().feature.deinit();
    }

    /** One mode on the object's own handler, with the record of this mode only. */
    static Answer run(int mode, const NewValue &value) {
        core().clearRecord();
        return DirtyRequest(GetParam().instance, value).runOwnHandler(mode);
    }
    static void commit(const Sample &sample) {
        run(MODE_SET_ACTION, sample.set);
        run(MODE_SET_COMMIT, sample.set);
    }

    /** The lines of these levels, in order; `unknownMode` is a mode. */
    static std::vector<LogLine> lines(int enterLevel, int unknownLevel, int unknownMode, int doneLevel) {
        std::vector<LogLine> result;
        const std::string start = "handle_" + GetParam().name + ": ";
        for (const LogLine &line : {LogLine{enterLevel, start + "Enter."},
                                    LogLine{unknownLevel, start + "unknown mode (" + std::to_string(unknownMode) + ")"},
                                    LogLine{doneLevel, start + "Done."}}) {
            if (line.level != 0) {
                result.push_back(line);
            }
        }
        return result;
    }

    static void expectValue(const Answer &answer, const NewValue &value) {
        EXPECT_EQ(answer.type, value.type);
        EXPECT_EQ(value.type == ASN_INTEGER ? NewValue::integer(answer.integer).content : answer.octets, value.content);
    }
    static void expectAnswered(const NewValue &value) {
        const Answer answer = get(GetParam().instance);
        EXPECT_THAT(answer, isAccepted());
        expectValue(answer, value);
    }
    /** A phase that neither calls the camera nor answers anything. */
    static void expectQuiet(int mode, const NewValue &value) {
        const Answer answer = run(mode, value);
        EXPECT_THAT(answer, isAccepted()) << mode;
        EXPECT_THAT(core().calls(), IsEmpty()) << mode;
        EXPECT_EQ(core().logs(), lines(GetParam().lines.enter, 0, 0, GetParam().lines.done)) << mode;
        expectValue(answer, value);
    }
};

class WritableObjectTest : public ObjectModesTest {};

INSTANTIATE_TEST_SUITE_P(Objects, ObjectModesTest, testing::ValuesIn(objectRows()), nameOf<ObjectRow>);
INSTANTIATE_TEST_SUITE_P(Objects, WritableObjectTest, testing::ValuesIn(writableRows()), nameOf<ObjectRow>);

} // namespace

TEST_P(ObjectModesTest, AnyOtherModeIsGenErrAndLeavesTheRequest) {
    const LineLevels &levels = GetParam().lines;
    if (GetParam().writable) {
        commit(GetParam().writable->first);
    }
    const Answer before = get(GetParam().instance);
    for (const NewValue &value : {NewValue::integer(7), NewValue::text("x")}) {
        for (const int mode : modesExcept(GetParam().served)) {
            SCOPED_TRACE(mode);
            const Answer answer = run(mode, value);
            EXPECT_THAT(answer, isRefused(SNMP_ERR_GENERR, GetParam().unknownModeError));
            expectValue(answer, value);
            EXPECT_EQ(core().calls(), GetParam().firstCalls);
            EXPECT_EQ(core().logs(), lines(levels.enter, levels.unknownMode, mode, levels.doneAfterError));
        }
    }
    if (GetParam().writable) {
        run(MODE_SET_COMMIT, GetParam().writable->zero.set);
        EXPECT_EQ(get(GetParam().instance).octets, before.octets);
        EXPECT_EQ(get(GetParam().instance).integer, before.integer);
    }
}

TEST_P(ObjectModesTest, TheAgentRefusesASetOfAReadOnlyObject) {
    core().clearRecord();
    const NewValue value = GetParam().writable ? GetParam().writable->first.set : NewValue::integer(7);
    const Answer answer = Request(GetParam().instance, value).run(MODE_SET_RESERVE1);
    EXPECT_EQ(answer.requestError, GetParam().isReadOnly ? SNMP_ERR_NOTWRITABLE : SNMP_ERR_NOERROR);
    if (GetParam().isReadOnly) {
        EXPECT_THAT(core().calls(), IsEmpty());
        EXPECT_THAT(core().logs(), IsEmpty());
    }
}

TEST_P(ObjectModesTest, AGetNextIsAnsweredLikeAGetIfAtAll) {
    if (std::find(GetParam().served.begin(), GetParam().served.end(), MODE_GETNEXT) == GetParam().served.end()) {
        return;
    }
    // A value of another type, which the answer replaces.
    const NewValue before{ASN_OPAQUE, "x"};
    const Answer got = run(MODE_GET, before);
    const Calls calls = core().calls();
    const std::vector<LogLine> logs = core().logs();
    const Answer next = run(MODE_GETNEXT, before);
    EXPECT_THAT(got, isAccepted());
    EXPECT_THAT(next, isAccepted());
    EXPECT_NE(got.type, ASN_OPAQUE);
    EXPECT_EQ(next.type, GetParam().writable ? ASN_OPAQUE : got.type);
    if (!GetParam().writable) {
        EXPECT_EQ(next.integer, got.integer);
        EXPECT_EQ(next.octets, got.octets);
    }
    EXPECT_EQ(core().calls(), calls);
    EXPECT_EQ(core().logs(), logs);
}

TEST_P(WritableObjectTest, TakesOneTypeOnly) {
    const Writable &writable = *GetParam().writable;
    const NewValue &value = writable.first.set;
    for (int type = 0; type <= 0xFF; ++type) {
        SCOPED_TRACE(type);
        core().clearRecord();
        DirtyRequest request(GetParam().instance, value);
        // Set on the finished varbind, since the agent's library does not build varbinds of every type.
        request.info()->requestvb->type = static_cast<unsigned char>(type);
        const Answer answer = request.runOwnHandler(MODE_SET_RESERVE1);
        request.info()->requestvb->type = value.type;
        const bool good = type == value.type;
        EXPECT_THAT(answer, good ? isAccepted() : isRefused(writable.wrongTypeReturned, SNMP_ERR_WRONGTYPE));
        const LineLevels &levels = GetParam().lines;
        EXPECT_EQ(core().logs(), lines(levels.enter, 0, 0, good ? levels.done : levels.doneAfterError));
        EXPECT_THAT(core().calls(), IsEmpty());
    }
}

TEST_P(WritableObjectTest, KeepsItsValueFromPhaseToPhase) {
    const auto &[zero, first, second, wrongType, isPrivate, undone] = *GetParam().writable;
    commit(first);
    expectAnswered(first.answered);
    for (const int mode : {MODE_SET_RESERVE1, MODE_SET_RESERVE2}) {
        expectQuiet(mode, second.set);
        expectAnswered(first.answered);
    }
    expectQuiet(MODE_SET_ACTION, second.set);
    expectAnswered(isPrivate ? first.answered : second.answered);
    expectQuiet(MODE_SET_FREE, first.set);
    expectAnswered(isPrivate ? first.answered : second.answered);
    EXPECT_THAT(run(MODE_SET_COMMIT, first.set), isAccepted());
    expectAnswered(second.answered); // the value of the ACTION, not of the COMMIT

    expectQuiet(MODE_SET_ACTION, first.set);
    expectQuiet(MODE_SET_UNDO, first.set);
    expectAnswered(undone.value_or(second.answered));
    EXPECT_THAT(run(MODE_SET_COMMIT, first.set), isAccepted());
    expectAnswered(undone.value_or(second.answered));
}
