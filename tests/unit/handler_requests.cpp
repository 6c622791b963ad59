// SPDX-License-Identifier: Apache-2.0
#include "handler_requests.h"

#include <algorithm>
#include <cstring>

namespace {

const int kSetPhases[] = {MODE_SET_RESERVE1, MODE_SET_RESERVE2, MODE_SET_ACTION, MODE_SET_COMMIT};

} // namespace

namespace logs {

LogLine error(const std::string &text) {
    return {3, text};
}

LogLine notice(const std::string &text) {
    return {5, text};
}

LogLine info(const std::string &text) {
    return {6, text};
}

LogLine debug(const std::string &text) {
    return {7, text};
}

std::vector<LogLine> from(const std::string &handler, const std::vector<LogLine> &between) {
    std::vector<LogLine> lines{debug(handler + ": Enter.")};
    lines.insert(lines.end(), between.begin(), between.end());
    lines.push_back(debug(handler + ": Done."));
    return lines;
}

LogLine failed(const std::string &call) {
    return error("Failed zorva api call: " + call + " (status 17)");
}

} // namespace logs

std::string discoverCall(const std::string &service) {
    return "getTargetIds(\"" + service + "\")";
}

std::string openCall(const std::string &service) {
    return "zorva_api_" + service + "_initiator_init(ipc, log, &, 0, null)";
}

std::string closeCall(const std::string &service) {
    return "zorva_api_" + service + "_initiator_deinit(" + service + ")";
}

const Modes &knownModes() {
    static const Modes modes{MODE_GET,        MODE_GETNEXT,    MODE_SET_RESERVE1, MODE_SET_RESERVE2,
                             MODE_SET_ACTION, MODE_SET_COMMIT, MODE_SET_FREE,     MODE_SET_UNDO};
    return modes;
}

Modes modesExcept(const Modes &served) {
    Modes modes(std::begin(kUnknownModes), std::end(kUnknownModes));
    for (const int mode : knownModes()) {
        if (std::find(served.begin(), served.end(), mode) == served.end()) {
            modes.push_back(mode);
        }
    }
    return modes;
}

std::string octets(std::initializer_list<unsigned int> values) {
    std::string result;
    for (const unsigned int value : values) {
        result.push_back(static_cast<char>(static_cast<unsigned char>(value)));
    }
    return result;
}

std::string command(unsigned int mode, int speed, unsigned int position) {
    return octets({mode, static_cast<unsigned int>(speed) & 0xFFU, position & 0xFFU, position >> 8U});
}

testing::Matcher<const Answer &> isAccepted() {
    return isRefused(SNMP_ERR_NOERROR, SNMP_ERR_NOERROR);
}

testing::Matcher<const Answer &> isInteger(long value, unsigned char type) {
    return testing::AllOf(isAccepted(), testing::Field("type", &Answer::type, type),
                          testing::Field("value", &Answer::integer, value));
}

testing::Matcher<const Answer &> isOctets(const std::string &value) {
    return testing::AllOf(isAccepted(), testing::Field("type", &Answer::type, ASN_OCTET_STR),
                          testing::Field("octets", &Answer::octets, value));
}

testing::Matcher<const Answer &> isRefused(int returned, int requestError) {
    return testing::AllOf(testing::Field("returned", &Answer::returned, returned),
                          testing::Field("request error", &Answer::requestError, requestError));
}

void set(std::string_view instance, const NewValue &value) {
    DirtyRequest request(instance, value);
    for (const int phase : kSetPhases) {
        ASSERT_THAT(request.run(phase), isAccepted()) << "phase " << phase;
    }
}

void setAndUndo(std::string_view instance, const NewValue &value) {
    DirtyRequest request(instance, value);
    for (const int phase : {MODE_SET_RESERVE1, MODE_SET_RESERVE2, MODE_SET_ACTION, MODE_SET_UNDO}) {
        ASSERT_THAT(request.run(phase), isAccepted()) << "phase " << phase;
    }
}

DirtyRequest::DirtyRequest(std::string_view dotted, const NewValue &value) : Request(dotted, value) {
    netsnmp_variable_list *varbind = info()->requestvb;
    if (varbind->val.string == varbind->buf) {
        std::memset(varbind->buf + varbind->val_len, 0xEE, sizeof varbind->buf - varbind->val_len);
    }
}
