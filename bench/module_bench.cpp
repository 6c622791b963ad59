// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Benchmarks of the module's conversions and request helpers. They run on the agent's library without an agent, and on
 * the silent core library.
 */
#include <cstdint>
#include <exception>

#include <benchmark/benchmark.h>

#include "agent_requests.h"
#include "position_command.h"
#include "positioning_state.h"
#include "snmp_utils.h"
#include "table_reporter.h"
#include "unit_conversion.h"

namespace {

using namespace positioning;

struct Conversion {
    const char *name;
    int (*run)(int value);
};

// clang-format off
constexpr Conversion kConversions[] = {
    {"pan to the service's units",      convertNTCIPToZorvaPan},
    {"tilt to the service's units",     convertNTCIPToZorvaTilt},
    {"zoom to the service's units",     convertNTCIPToZorvaZoom},
    {"pan from the service's units",    convertZorvaToNTCIPPan},
    {"tilt from the service's units",   convertZorvaToNTCIPTilt},
    {"zoom from the service's units",   convertZorvaToNTCIPZoom},
    {"speed to a velocity",             [](int value) { return speedNTCIPToZorva(kPanAxis, static_cast<signed char>(value), 80000); }},
    {"speed to a fraction",             [](int value) { return static_cast<int>(speedPercentage(kPanAxis, static_cast<signed char>(value))); }},
    {"ScaleValues",                     [](int value) { return ScaleValues(value, 0, 65535, -90000, 90000); }},
    {"four octets to a command",        [](int value) { return int{DecodePositionCommand({2, 1, static_cast<std::uint8_t>(value), 0}).position}; }},
};
// clang-format on

void convert(benchmark::State &state, const Conversion &conversion) {
    int value = 0;
    for ([[maybe_unused]] const auto iteration : state) {
        value = (value + 1) % 36000;
        benchmark::DoNotOptimize(conversion.run(value));
    }
}

struct Helper {
    const char *name;
    int (*run)(netsnmp_request_info *request);
};

int answerNumber(netsnmp_request_info *request) {
    return SetRequestInteger(request, 65535);
}

int answerOctets(netsnmp_request_info *request) {
    const PositionOctets octets{2, 127, 80, 70};
    return SetRequestValue(request, ASN_OCTET_STR, octets.data(), octets.size());
}

int checkType(netsnmp_request_info *request) {
    return CheckRequestType(request, ASN_INTEGER);
}

int findCell(netsnmp_request_info *request) {
    int row = 0;
    int col = 0;
    GetRowAndColFromRequest(request, row, col);
    return row;
}

constexpr Helper kHelpers[] = {
    {"SetRequestInteger", answerNumber},
    {"SetRequestValue, four octets", answerOctets},
    {"CheckRequestType", checkType},
    {"GetRowAndColFromRequest", findCell},
};

void runHelper(benchmark::State &state, const Helper &helper) {
    requests::Request request("1.3.6.1.4.1.99999.1.3.2.1.3.1.1", requests::NewValue::integer(1));
    netsnmp_table_request_info table{};
    table.colnum = 3;
    netsnmp_request_add_list_data(request.info(), netsnmp_create_data_list(TABLE_HANDLER_NAME, &table, nullptr));
    for ([[maybe_unused]] const auto iteration : state) {
        benchmark::DoNotOptimize(helper.run(request.info()));
    }
}

} // namespace

int main(int argc, char **argv) {
    if (!bench::initialise(argc, argv)) {
        return 2;
    }
    requests::startAgentLibrary();
    gApiCookie = &gApiCookie;
    gPositionings = {"positioning/1"};
    for (const Conversion &conversion : kConversions) {
        benchmark::RegisterBenchmark(conversion.name, [&](benchmark::State &state) { convert(state, conversion); });
    }
    for (const Helper &helper : kHelpers) {
        benchmark::RegisterBenchmark(helper.name, [&](benchmark::State &state) { runHelper(state, helper); });
    }
    bench::runBenchmarks("Parts of the module, with the silent core library");
    return 0;
}
