// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The modes of every scalar object: the refused ones, a GETNEXT, and the phases of a SET from its check to its UNDO.
 */
#include <algorithm>
#include <cstring>
#include <optional>
#include <set>
#include <tuple>

#include "every_call.h"
#include "handler_requests.h"
#include "lens_drives.h"

namespace {

struct Lifecycle {
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
    std::optional<NewValue> undone = {}; ///< answer after an UNDO, if not the last committed value
};

struct ObjectRow : Row { // the name is the handler's, without its prefix
    std::string object;
    Lifecycle feature;
    LineLevels lines;
    std::optional<Writable> writable = {};
    Modes served{MODE_GET, MODE_GETNEXT};
    Calls firstCalls = {}; ///< in every mode

    std::string instance() const {
        return listedObject(object).instance;
    }
};

ObjectRow readOnly(const std::string &object, const Lifecycle &feature, const LineLevels &lines,
                   const Modes &served = {MODE_GET, MODE_GETNEXT}) {
    return {{object}, object, feature, lines, {}, served};
}

ObjectRow writable(const std::string &object, const Lifecycle &feature, const LineLevels &lines,
                   const Writable &values) {
    return {{object}, object, feature, lines, values, knownModes()};
}

Writable texts(const std::string &first, const std::string &second) {
    return {same(NewValue::text(std::string(first.size(), '\0'))), same(NewValue::text(first)),
            same(NewValue::text(second))};
}

Writable integers(long first, long second) {
    return {same(NewValue::integer(0)), same(NewValue::integer(first)), same(NewValue::integer(second))};
}

void addLens(std::vector<ObjectRow> &rows) {
    const LineLevels levels[] = {kNotDoneAfterError, kNotDoneAfterError, kAllLines,
                                 {7, 3, 6, 6},       {7, 7, 7, 0},       kAllLines};
    const std::optional<Writable> values[] = {{},
                                              {},
                                              texts(command(0, 0, 0x3412), command(2, -5, 0x1234)),
                                              texts(octets({0, 0x80}), octets({0x40, 0x80})),
                                              {},
                                              texts(octets({0x40}), octets({0xC0}))};
    for (const lens_tests::Drive &drive : lens_tests::allDrives()) {
        for (std::size_t i = 0; i < drive.objects.size(); ++i) {
            const Lifecycle feature{drive.init, drive.deinit};
            const std::string object = drive.objects[i].name;
            rows.push_back(values[i] ? writable(object, feature, levels[i], *values[i])
                                     : readOnly(object, feature, levels[i]));
            rows.back().name = std::string(drive.objects[i].handler).substr(std::strlen("handle_"));
        }
    }
}

void addPositioning(std::vector<ObjectRow> &rows) {
    const Lifecycle feature{InitPositioning, DeinitPositioning};
    for (const char *object :
         {"rangePanLeftLimit", "rangePanRightLimit", "rangePanHomePosition", "rangeTiltUpLimit", "rangeTiltDownLimit",
          "rangeZoomLimit", "rangeMinimumPanStepAngle", "rangeMinimumTiltStepAngle"}) {
        rows.push_back(readOnly(object, feature, kAllLines));
    }
    Writable north = integers(65535, 0);
    north.isPrivate = false;
    north.undone = NewValue::integer(65535); // the value of the ACTION
    const Writable timeout = integers(700, 65535);
    const Writable position = texts(command(0, 0, 0x1234), command(3, 5, 0x1234));
    for (const auto &[object, values] :
         {std::pair("rangeTrueNorthOffset", north), std::pair("timeoutPan", timeout), std::pair("timeoutTilt", timeout),
          std::pair("timeoutZoom", timeout), std::pair("positionPan", position), std::pair("positionTilt", position),
          std::pair("positionZoomLens", position)}) {
        rows.push_back(writable(object, feature, kAllLines, values));
        rows.back().writable->wrongTypeReturned = SNMP_ERR_NOERROR;
    }
}

void addInputsAndOutputs(std::vector<ObjectRow> &rows) {
    const Lifecycle relay{InitRelay, DeinitRelay};
    rows.push_back(readOnly("alarmStatus", {InitAlarm, DeinitAlarm}, kNotDoneAfterError));
    rows.push_back(readOnly("inputStatus", {InitAlarm, DeinitAlarm}, kNotDoneAfterError));
    rows.push_back(readOnly("outputStatus", relay, kNotDoneAfterError));
    // Commands to relays that do not exist.
    rows.push_back(writable("outputControl", relay, {7, 0, 7, 0}, texts(octets({5, 0x80}), octets({6, 0}))));
    rows.back().writable->isPrivate = false;
}

void addPresets(std::vector<ObjectRow> &rows) {
    const Lifecycle presets{InitPresets, DeinitPresets};
    const auto preset = [](unsigned int number) {
        return Sample{NewValue::integer(number), NewValue::text(octets({number}))};
    };
    rows.push_back(readOnly("rangeMaximumPreset", presets, kNotDoneAfterError));
    for (const char *object : {"presetGotoPosition", "presetStorePosition"}) {
        rows.push_back(writable(object, presets, kAllLines, {preset(0), preset(6), preset(200)}));
    }
}

/** Adds the readings, the restart and the identities of the camera. None of them logs a GET. */
void addCamera(std::vector<ObjectRow> &rows) {
    const Lifecycle power{InitPower, DeinitPower};
    const Lifecycle temperature{InitTemperature, DeinitTemperature};
    for (const auto &[object, feature, call] :
         {std::tuple("power", power, "zorva_api_power_get_power_state_send(power, \"power/1\", &)"),
          std::tuple("voltage", power, "zorva_api_power_get_voltage_state_send(power, \"power/1\", &)"),
          std::tuple("temperature", temperature,
                     "zorva_api_temperature_get_temperature_send(temperature, \"temperature/1\", &)")}) {
        rows.push_back(readOnly(object, feature, kNoLines, {MODE_GET}));
        rows.back().firstCalls = {call};
    }
    for (const char *object : {"modelNumber", "modelName", "serialNumber", "fwVersion", "swVersion", "hwVersion"}) {
        rows.push_back(readOnly(object, {InitDeviceInfo, DeinitDeviceInfo}, kNoLines, {MODE_GET}));
    }
    for (const char *object : {"maxModules", "moduleNumber", "moduleDeviceNode", "moduleMake", "moduleModel",
                               "moduleVersion", "moduleType"}) {
        rows.push_back(readOnly(object, {InitModuleInfo, DeinitModuleInfo}, kNoLines, {MODE_GET}));
    }
    Writable number = integers(7, 9);
    number.wrongTypeReturned = SNMP_ERR_NOERROR;
    number.isPrivate = false;
    number.undone = NewValue::integer(0);
    rows.push_back(writable("rebootDevice", {InitRebootInfo, DeinitRebootInfo}, {0, 3, 0, 0}, number));
    rows.back().served = {MODE_GET,        MODE_SET_RESERVE1, MODE_SET_RESERVE2, MODE_SET_ACTION,
                          MODE_SET_COMMIT, MODE_SET_FREE,     MODE_SET_UNDO};
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
    std::vector<ObjectRow> rows = objectRows();
    rows.erase(std::remove_if(rows.begin(), rows.end(), [](const ObjectRow &row) { return !row.writable; }),
               rows.end());
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
        get(GetParam().instance()); // the first request of all may ask the camera for more
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
        return DirtyRequest(GetParam().instance(), value).runOwnHandler(mode);
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
        core().clearRecord();
        const Answer answer = get(GetParam().instance());
        EXPECT_THAT(answer, isAccepted());
        expectValue(answer, value);
        EXPECT_THAT(core().calls(), IsEmpty());
        EXPECT_EQ(core().logs(), lines(GetParam().lines.enter, 0, 0, GetParam().lines.done));
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

TEST(ObjectModes, EveryListedScalarHasARow) {
    std::set<std::string> listed;
    for (const auto &[name, object] : listedObjects()) {
        if (object.instance != nullptr) {
            listed.insert(name);
        }
    }
    std::set<std::string> tested;
    for (const ObjectRow &row : objectRows()) {
        tested.insert(row.object);
    }
    EXPECT_EQ(tested, listed) << "object_modes_test.cpp needs rows for exactly the scalars of objects.def";
}

TEST_P(ObjectModesTest, AnyOtherModeIsGenErrAndLeavesTheRequest) {
    const LineLevels &levels = GetParam().lines;
    if (GetParam().writable) {
        commit(GetParam().writable->first);
    }
    const Answer before = get(GetParam().instance());
    for (const NewValue &value : {NewValue::integer(7), NewValue::text("x")}) {
        for (const int mode : modesExcept(GetParam().served)) {
            SCOPED_TRACE(mode);
            const Answer answer = run(mode, value);
            EXPECT_THAT(answer, isRefused(SNMP_ERR_GENERR, SNMP_ERR_GENERR));
            expectValue(answer, value);
            EXPECT_EQ(core().calls(), GetParam().firstCalls);
            EXPECT_EQ(core().logs(), lines(levels.enter, levels.unknownMode, mode, levels.doneAfterError));
        }
    }
    if (GetParam().writable) {
        run(MODE_SET_COMMIT, GetParam().writable->zero.set);
        EXPECT_EQ(get(GetParam().instance()).octets, before.octets);
        EXPECT_EQ(get(GetParam().instance()).integer, before.integer);
    }
}

TEST_P(ObjectModesTest, OnlyTheInstance0Answers) {
    const std::string registered = listedObject(GetParam().object).oid;
    EXPECT_EQ(requests::registeredName(registered), GetParam().object);
    for (const char *end : {"", ".1"}) {
        EXPECT_EQ(get(registered + end).type, SNMP_NOSUCHINSTANCE) << end;
    }
}

TEST_P(ObjectModesTest, TheAgentRefusesASetOfAReadOnlyObject) {
    core().clearRecord();
    const NewValue value = GetParam().writable ? GetParam().writable->first.set : NewValue::integer(7);
    const Answer answer = Request(GetParam().instance(), value).run(MODE_SET_RESERVE1);
    const bool isReadOnly = listedObject(GetParam().object).isReadOnly;
    const Modes &served = GetParam().served;
    const bool takesSets = std::find(served.begin(), served.end(), MODE_SET_RESERVE1) != served.end();
    EXPECT_EQ(answer.requestError, isReadOnly ? SNMP_ERR_NOTWRITABLE : takesSets ? SNMP_ERR_NOERROR : SNMP_ERR_GENERR);
    if (isReadOnly) {
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
    EXPECT_EQ(got.type, listedObject(GetParam().object).type);
    if (GetParam().lines.enter != 0) {
        EXPECT_EQ(logs.front(), lines(GetParam().lines.enter, 0, 0, 0).front()) << "another object's handler";
    }
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
        DirtyRequest request(GetParam().instance(), value);
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
