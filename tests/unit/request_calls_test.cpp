// SPDX-License-Identifier: Apache-2.0
// The users' table of calls per request against the calls that requests make.
#include <algorithm>
#include <fstream>
#include <utility>

#include "every_call.h"
#include "gpio_pdu.h"
#include "handler_requests.h"
#include "position_objects.h"

namespace {

constexpr zorva_core_status kNoAnswer = 103;

/** Numbers of calls of a request. */
struct Counts {
    std::size_t calls = 0;
    std::size_t unanswered = 0;

    void raise(const Counts &other) {
        calls = std::max(calls, other.calls);
        unanswered = std::max(unanswered, other.unanswered);
    }
};

bool operator==(const Counts &left, const Counts &right) {
    return left.calls == right.calls && left.unanswered == right.unanswered;
}

void PrintTo(const Counts &counts, std::ostream *stream) {
    *stream << counts.calls << " calls, " << counts.unanswered << " unanswered";
}

/** A kind of request: a row of the table. */
struct Kind {
    std::string title;
    std::vector<Pdu::Entry> requests; ///< requests of this kind, with one varbind each; a GET has no value
    bool isFirst = false;             ///< the request is the first one for its position object since the start
};

std::string row(const Kind &kind, const Counts &counts) {
    return "| " + kind.title + " | " + std::to_string(counts.calls) + " | " + std::to_string(counts.unanswered) + " |";
}

std::vector<Pdu::Entry> commandsTo(std::initializer_list<const char *> objects, unsigned int mode) {
    std::vector<Pdu::Entry> commands;
    for (const char *object : objects) {
        commands.push_back({object, NewValue::text(command(mode, mode == 0 ? 0 : 64, 1000))});
    }
    return commands;
}

std::vector<Pdu::Entry> operator+(std::vector<Pdu::Entry> left, const std::vector<Pdu::Entry> &right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

std::string stateOfFirstRow(const char *table) {
    return std::string(table) + ".1.3.1";
}

/** The kinds of requests that call the camera. */
std::vector<Kind> kinds() {
    using namespace oids;
    constexpr unsigned int kStop = 0;
    constexpr unsigned int kDelta = 1;
    constexpr unsigned int kAbsolute = 2;
    constexpr unsigned int kContinuous = 3;
    const std::string inputState = stateOfFirstRow(registered::alarmStatesTable);
    const std::string relayState = stateOfFirstRow(registered::relayStatesTable);
    const NewValue one = NewValue::integer(1);
    const auto toLens = [](unsigned int mode) { return commandsTo({positionFocusLens, positionIrisLens}, mode); };
    return {
        {"GET of `temperature`, `power`, `voltage`, `rangeMaximumPreset`, a limit of pan, or the state in a table row",
         {{temperature},
          {power},
          {voltage},
          {rangeMaximumPreset},
          {rangePanLeftLimit},
          {rangePanRightLimit},
          {inputState},
          {relayState}}},
        {"GET of a limit of tilt", {{rangeTiltUpLimit}, {rangeTiltDownLimit}}},
        {"GET of `outputStatus`", {{outputStatus}}},
        {"GET of `inputStatus`", {{inputStatus}}},
        {"GET of `systemLensFeatureStatus`", {{systemLensFeatureStatus}}},
        {"first GET of a position of pan, tilt or zoom", {{positionPan}, {positionTilt}, {positionZoomLens}}, true},
        {"SET of a time-out, or of `rebootDevice`",
         {{timeoutPan, one}, {timeoutTilt, one}, {timeoutZoom, one}, {rebootDevice, one}}},
        {"stop of pan, tilt or zoom", commandsTo({positionPan, positionTilt, positionZoomLens}, kStop)},
        {"the same as the first request for the axis", commandsTo({positionPan, positionTilt, positionZoomLens}, kStop),
         true},
        {"continuous move of pan, tilt or zoom",
         commandsTo({positionPan, positionTilt, positionZoomLens}, kContinuous)},
        {"delta or absolute move of pan or tilt",
         commandsTo({positionPan, positionTilt}, kDelta) + commandsTo({positionPan, positionTilt}, kAbsolute)},
        {"delta or absolute move of zoom",
         commandsTo({positionZoomLens}, kDelta) + commandsTo({positionZoomLens}, kAbsolute)},
        {"the same as the first request for the axis, the longest of all", commandsTo({positionZoomLens}, kAbsolute),
         true},
        {"stop, continuous or absolute move of focus or iris", toLens(kStop) + toLens(kContinuous) + toLens(kAbsolute)},
        {"delta move of focus or iris", toLens(kDelta)},
        {"SET of `systemLensFeatureControl`", {{systemLensFeatureControl, NewValue::text("\xC0\x80")}}},
        {"SET of a preset object", {{presetGotoPosition, one}, {presetStorePosition, one}}},
        {"SET of `outputControl`", {{outputControl, NewValue::text("\x01\x80")}}},
        {"SET of a row of `relayStatesTable`", {{relayState, one}}},
    };
}

/** The rows of the table in the document, without its head. */
std::vector<std::string> documentedRows() {
    std::ifstream document(QUARNSNMP_RELIABILITY_DOCUMENT);
    EXPECT_TRUE(document.is_open());
    std::vector<std::string> rows;
    bool inSection = false;
    for (std::string line; std::getline(document, line);) {
        if (line.rfind("## ", 0) == 0) {
            inSection = line == "## Calls of a request";
        } else if (inSection && line.rfind("| ", 0) == 0) {
            rows.push_back(line);
        }
    }
    if (!rows.empty()) {
        rows.erase(rows.begin());
    }
    return rows;
}

/** A camera with every service, whose values need the longest sequences of calls. */
class RequestCallsTest : public ModuleTest {
protected:
    void SetUp() override {
        openCore();
        for (const scripted::Call &call : scripted::everyCall()) {
            core().during(call.function, [this] { scriptCall(++made_); });
        }
        for (const char *service : {"device_information", "device_management", "exposure", "iris", "lens_focus",
                                    "positioning", "power", "presets_tours", "temperature"}) {
            core().targets(service, {service + "/1"s});
        }
        core().targets("alarm", {"alarm/1", "alarm/2", "alarm/3", "alarm/4", "alarm/5"});
        core().targets("relay", {"relay/1", "relay/2", "relay/3"});
        scriptCall(0);
        for (FeatureModule &feature : gFeatureModules) {
            feature.initialised = feature.init(GetIpcCookie());
        }
    }

    void TearDown() override {
        for (const FeatureModule &feature : gFeatureModules) {
            if (feature.initialised) {
                feature.deinit();
            }
        }
    }

    /** Makes a request once for each sequence of answered and unanswered calls. @return the highest numbers */
    Counts count(const Kind &kind, const Pdu::Entry &entry) {
        Counts highest;
        for (bool more = true; more; more = nextSequence()) {
            highest.raise(make(kind, entry));
        }
        return highest;
    }

private:
    /** Sets the outcomes for the call of this number: no answer if the sequence says so, and otherwise zeros. */
    void scriptCall(std::size_t number) {
        const bool isUnanswered = number < unanswered_.size() && unanswered_[number];
        for (const scripted::Call &call : scripted::everyCall()) {
            if (isUnanswered) {
                core().fail(call.function, kNoAnswer);
            } else {
                core().answer(call.function, call.outputs);
            }
        }
    }

    Counts make(const Kind &kind, const Pdu::Entry &entry) {
        const std::vector<bool> sequence = std::exchange(unanswered_, {});
        scriptCall(0);
        positioning::ResetPositionObjects();
        if (!kind.isFirst) {
            Pdu{{entry.name}}.run(MODE_GET);
        }
        unanswered_ = sequence;
        made_ = 0;
        scriptCall(0);
        Pdu pdu{entry};
        if (entry.value.type == ASN_NULL) {
            pdu.run(MODE_GET);
        } else {
            pdu.set();
        }
        unanswered_.resize(made_);
        return {made_, static_cast<std::size_t>(std::count(unanswered_.begin(), unanswered_.end(), true))};
    }

    /** Leaves the last answered call unanswered, and has those after it answered. @return false after the last sequence
     */
    bool nextSequence() {
        while (!unanswered_.empty() && unanswered_.back()) {
            unanswered_.pop_back();
        }
        if (unanswered_.empty()) {
            return false;
        }
        unanswered_.back() = true;
        return true;
    }

    std::vector<bool> unanswered_; ///< by the number of the call
    std::size_t made_ = 0;
};

} // namespace

TEST_F(RequestCallsTest, TheDocumentedTableHasTheCallsOfEachKindOfRequest) {
    std::vector<std::string> rows;
    for (const Kind &kind : kinds()) {
        const Counts counts = count(kind, kind.requests.front());
        for (const Pdu::Entry &entry : kind.requests) {
            EXPECT_EQ(count(kind, entry), counts) << kind.title << ": " << entry.name;
        }
        rows.push_back(row(kind, counts));
    }
    EXPECT_EQ(documentedRows(), rows);
}
