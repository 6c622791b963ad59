// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Fuzzer of the requests to the panel's server. The first octet of an input is the size of the pieces in which the rest
 * arrives. The complete requests must not depend on the pieces. Where the parser notices that the octets are no request
 * may depend on them.
 */
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "finding.h"
#include "guard.h"
#include "http_request.h"

namespace {

/** Reads all requests of some octets. @return the complete ones, as a text to compare */
std::string readAll(std::string_view octets, std::size_t piece) {
    std::string result;
    std::string input;
    auto reader = std::make_unique<panel::RequestReader>();
    while (!octets.empty() || !input.empty()) {
        input.append(octets.substr(0, piece));
        octets.remove_prefix(std::min(piece, octets.size()));
        const auto progress = reader->read(input);
        if (progress == panel::RequestReader::Progress::Failed) {
            return result;
        }
        if (progress == panel::RequestReader::Progress::Complete) {
            const panel::Request request = reader->take();
            if (request.path.empty() || request.path.front() != '/' || request.body.size() > panel::kLongestBody) {
                fuzz::reportFinding("a request that breaks the rules: " + request.path);
            }
            const auto refusal = panel::refusal(request, panel::HostPolicy({"192.0.2.1"}));
            result += request.method + " " + request.path + " " + request.host + " " + request.body +
                      std::to_string(refusal ? refusal->status : 0) + "\n";
            reader = std::make_unique<panel::RequestReader>();
        } else if (octets.empty()) {
            return result;
        }
    }
    return result;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    if (size < 2) {
        return 0;
    }
    const std::string_view octets(reinterpret_cast<const char *>(data) + 1, size - 1);
    const std::size_t piece = data[0] % 64 + 1;
    if (readAll(octets, piece) != readAll(octets, octets.size())) {
        fuzz::reportFinding("a result that depends on the pieces of " + std::to_string(piece) + " octets");
    }
    return 0;
}
