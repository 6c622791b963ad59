// SPDX-License-Identifier: Apache-2.0
#include "security_level.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <utility>

namespace snmp {

namespace {

constexpr std::array<std::pair<SecurityLevel, const char *>, 3> kLevels = {{
    {SecurityLevel::NoAuthNoPriv, "noAuthNoPriv"},
    {SecurityLevel::AuthNoPriv, "authNoPriv"},
    {SecurityLevel::AuthPriv, "authPriv"},
}};

} // namespace

std::string levelName(SecurityLevel level) {
    const auto *const found =
        std::find_if(kLevels.begin(), kLevels.end(), [level](const auto &entry) { return entry.first == level; });
    return found != kLevels.end() ? found->second : "level " + std::to_string(static_cast<int>(level));
}

SecurityLevel levelNamed(const std::string &name) {
    const auto *const found =
        std::find_if(kLevels.begin(), kLevels.end(), [&](const auto &entry) { return name == entry.second; });
    if (found == kLevels.end()) {
        throw std::invalid_argument("there is no security level '" + name + "'");
    }
    return found->first;
}

SecurityLevel levelOfPassphrases(const std::string &authentication, const std::string &privacy) {
    if (!privacy.empty()) {
        return SecurityLevel::AuthPriv;
    }
    return authentication.empty() ? SecurityLevel::NoAuthNoPriv : SecurityLevel::AuthNoPriv;
}

} // namespace snmp
