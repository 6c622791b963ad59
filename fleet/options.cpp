// SPDX-License-Identifier: Apache-2.0
#include "options.h"

#include <stdexcept>

namespace fleet {

namespace {

/** Runs a function that parses an option, and puts the name of the option before its error. */
template <typename Parse>
auto parsed(const std::string &option, Parse &&parse) {
    try {
        return parse();
    } catch (const std::invalid_argument &error) {
        throw std::invalid_argument(option + ": " + error.what());
    }
}

} // namespace

void Options::check() {
    addresses = parsed("--base", [this] { return consecutiveAddresses(base, count); });
    shares.clear();
    for (const std::string &camera : cameras) {
        shares.push_back(parsed("--camera", [&camera] { return parseShare(camera); }));
    }
    trapDestination.reset();
    if (!trapTo.empty()) {
        trapDestination = parsed("--trap-to", [this] { return parseEndpoint(trapTo); });
    }
}

} // namespace fleet
