// SPDX-License-Identifier: Apache-2.0
#include "notification_user.h"

#include <algorithm>

#include "failure.h"
#include "netsnmp_types.h"
#include "octets_text.h"

namespace snmp {

namespace {

/** Quotes a word of the library's configuration. */
std::string quoted(const std::string &text) {
    std::string word;
    for (const char character : text) {
        word += (character == '"' || character == '\\' ? "\\" : "") + std::string(1, character);
    }
    return "\"" + word + "\"";
}

/** Writes an engine ID as a configuration has it. */
std::string engineText(const std::string &engine) {
    std::string text = hexText(engine);
    text.erase(std::remove(text.begin(), text.end(), ' '), text.end());
    return "0x" + text;
}

/** Writes the arguments of the configuration's createUser. */
std::string creationOf(const Credentials &credentials, const std::string &engine) {
    const auto orElse = [](const std::string &text, const char *otherwise) { return text.empty() ? otherwise : text; };
    std::string line = "-e " + engineText(engine) + " " + quoted(credentials.user);
    if (!credentials.authenticationPassphrase.empty()) {
        line +=
            " " + orElse(credentials.authentication, "SHA-256") + " " + quoted(credentials.authenticationPassphrase);
    }
    if (!credentials.privacyPassphrase.empty()) {
        line += " " + orElse(credentials.privacy, "AES") + " " + quoted(credentials.privacyPassphrase);
    }
    return line;
}

} // namespace

void addNotificationUser(const Credentials &credentials, const std::string &engine, const std::string &sources) {
    constexpr std::size_t kShortest = 5;
    constexpr std::size_t kLongest = 32;
    if (engine.size() < kShortest || engine.size() > kLongest) {
        throw Failure(Cause::Usage, "an engine ID has 5 to 32 octets, not " + std::to_string(engine.size()));
    }
    std::string line = creationOf(credentials, engine);
    usm_parse_create_usmUser("createUser", line.data());
    if (credentials.user.empty() || usm_get_user(reinterpret_cast<const u_char *>(engine.data()), engine.size(),
                                                 credentials.user.c_str()) == nullptr) {
        throw Failure(Cause::Usage, "the SNMP library rejects the user of the engine " + engineText(engine), sources);
    }
}

} // namespace snmp
