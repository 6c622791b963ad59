// SPDX-License-Identifier: Apache-2.0
#include "traps.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <ctime>
#include <iostream>

#include <fmt/chrono.h>
#include <fmt/format.h>

#include "failure.h"
#include "interruption.h"
#include "meaning.h"
#include "native.h"
#include "objects.h"
#include "octets_text.h"

namespace ptzctl {

namespace {

constexpr const char *kNotification = "1.3.6.1.6.3.1.1.4.1.0";
constexpr const char *kUpTime = "1.3.6.1.2.1.1.3.0";

struct Explanation {
    const char *notification;
    const char *name;
    const char *reason; ///< after the value, or alone when there is none
};

// clang-format off
constexpr std::array<Explanation, 8> kExplanations = {{
    {"1.3.6.1.4.1.99999.1.1.7.0", "temperature",           "it has moved by more than 2 degrees"},
    {"1.3.6.1.4.1.99999.1.1.8.0", "power",                 "the state of the power supply has changed"},
    {"1.3.6.1.4.1.99999.1.1.9.0", "voltage",               "the state of the voltage has changed"},
    {"1.3.6.1.6.3.1.1.5.1",       "coldStart",             "the agent has started"},
    {"1.3.6.1.6.3.1.1.5.2",       "warmStart",             "the agent has started again with the same configuration"},
    {"1.3.6.1.6.3.1.1.5.5",       "authenticationFailure", "somebody has asked the agent without being known to it"},
    {"1.3.6.1.4.1.8072.4.0.2",    "nsNotifyShutdown",      "the agent ends"},
    {"1.3.6.1.4.1.8072.4.0.3",    "nsNotifyRestart",       "the agent has read its configuration again"},
}};
// clang-format on

std::string notificationOf(const std::vector<Variable> &variables) {
    const auto found = std::find_if(variables.begin(), variables.end(),
                                    [](const Variable &variable) { return variable.identifier == kNotification; });
    return found == variables.end() || found->type != Type::ObjectIdentifier ? "" : found->octets;
}

const Explanation *explanationOf(const std::string &notification) {
    const auto *const found = std::find_if(kExplanations.begin(), kExplanations.end(), [&](const Explanation &known) {
        return notification == known.notification;
    });
    return found == kExplanations.end() ? nullptr : &*found;
}

std::vector<Variable> valuesOf(const std::vector<Variable> &variables) {
    std::vector<Variable> values;
    for (Variable variable : variables) {
        if (variable.identifier != kNotification && variable.identifier != kUpTime) {
            // The module's traps name their value like the object, but without the object's instance.
            if (objectAt(variable.identifier + ".0") != nullptr) {
                variable.identifier += ".0";
            }
            values.push_back(std::move(variable));
        }
    }
    return values;
}

std::string nameOfNotification(const std::string &notification) {
    const Explanation *const known = explanationOf(notification);
    return known != nullptr ? known->name : notification.empty() ? "a notification without a name" : notification;
}

std::string now() {
    const std::time_t seconds = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
    return fmt::format("{:%Y-%m-%d %H:%M:%S}", fmt::localtime(seconds));
}

/** Where notifications come to, and how many have come. */
struct Receiver {
    const Invocation &invocation;
    netsnmp_transport *transport; ///< the session's
    int received = 0;
};

std::string addressOf(netsnmp_transport *transport, const netsnmp_pdu &pdu) {
    char *const text = transport->f_fmtaddr != nullptr
                           ? transport->f_fmtaddr(transport, pdu.transport_data, pdu.transport_data_length)
                           : nullptr;
    const std::string address = text != nullptr ? text : "unknown";
    std::free(text);
    // The library's text has both ends of the way, each with its address in brackets; the first one is the sender's.
    const std::size_t start = address.find('[');
    const std::size_t end = address.find(']', start);
    return end == std::string::npos ? address : address.substr(start + 1, end - start - 1);
}

void answerInform(netsnmp_session *session, netsnmp_pdu *pdu) {
    PduPointer answer(snmp_clone_pdu(pdu), snmp_free_pdu);
    if (answer) {
        answer->command = SNMP_MSG_RESPONSE;
        answer->errstat = 0;
        answer->errindex = 0;
        if (snmp_send(session, answer.get()) != 0) {
            static_cast<void>(answer.release()); // the library has it now
        }
    }
}

void print(Receiver &receiver, const std::string &address, const std::vector<Variable> &variables) {
    const Settings &settings = receiver.invocation.settings;
    ++receiver.received;
    if (receiver.invocation.json) {
        nlohmann::ordered_json line = {{"time", now()}, {"from", address}};
        line.update(trapJson(variables, settings));
        std::cout << line.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace) << std::endl;
        return;
    }
    std::cout << settings.style.faint(now()) << "  " << settings.style.heading(address) << "  "
              << trapText(variables, settings) << std::endl;
}

int take(int operation, netsnmp_session *session, int /*request*/, netsnmp_pdu *pdu, void *data) noexcept {
    if (operation != NETSNMP_CALLBACK_OP_RECEIVED_MESSAGE ||
        (pdu->command != SNMP_MSG_TRAP2 && pdu->command != SNMP_MSG_INFORM)) {
        return 1;
    }
    // The library is C: nothing may be thrown through it.
    try {
        auto &receiver = *static_cast<Receiver *>(data);
        print(receiver, addressOf(receiver.transport, *pdu), variablesOf(*pdu));
        if (pdu->command == SNMP_MSG_INFORM) {
            answerInform(session, pdu);
        }
    } catch (const std::exception &error) {
        std::cerr << "ptzctl: a notification could not be shown: " << error.what() << '\n';
    }
    return 1;
}

/** A word of the library's configuration. */
std::string quoted(const std::string &text) {
    std::string word;
    for (const char character : text) {
        word += (character == '"' || character == '\\' ? "\\" : "") + std::string(1, character);
    }
    return "\"" + word + "\"";
}

/** The line that creates a user of an engine. */
std::string creationOf(const Credentials &user, const std::string &engine) {
    const auto orElse = [](const std::string &text, const char *otherwise) { return text.empty() ? otherwise : text; };
    std::string line = "-e 0x";
    for (const char octet : engine) {
        line += fmt::format("{:02x}", static_cast<unsigned char>(octet));
    }
    line += " " + quoted(user.user);
    if (!user.authenticationPassphrase.empty()) {
        line += " " + orElse(user.authentication, "SHA-256") + " " + quoted(user.authenticationPassphrase);
    }
    if (!user.privacyPassphrase.empty()) {
        line += " " + orElse(user.privacy, "AES") + " " + quoted(user.privacyPassphrase);
    }
    return line;
}

/**
 * Makes the user whose notifications are signed and encrypted. The keys of a trap belong to the engine that sends it.
 * @throws Failure when the library does not take what was said
 */
void createUser(const Invocation &invocation) {
    constexpr std::size_t kShortest = 5;
    constexpr std::size_t kLongest = 32;
    if (invocation.engine.empty()) {
        return;
    }
    std::string engine = octetsOf(invocation.engine);
    if (engine.size() < kShortest || engine.size() > kLongest) {
        throw Failure(ExitCode::Usage, "an engine identifier has 5 to 32 octets, not " + std::to_string(engine.size()));
    }
    std::string name = invocation.credentials.user;
    std::string line = creationOf(invocation.credentials, engine);
    usm_parse_create_usmUser("createUser", line.data());
    if (name.empty() ||
        usm_get_user(reinterpret_cast<u_char *>(engine.data()), engine.size(), name.data()) == nullptr) {
        throw Failure(
            ExitCode::Usage, "the SNMP library takes no such user of the engine " + invocation.engine,
            "use --user, PTZCTL_AUTH_PASSPHRASE and PTZCTL_PRIVACY_PASSPHRASE, of at least 8 characters each");
    }
}

/** Reads what comes until it is interrupted or there has been enough. */
void receive(const Receiver &receiver, const Interruption &interruption) {
    while (receiver.invocation.count == 0 || receiver.received < receiver.invocation.count) {
        fd_set readable;
        FD_ZERO(&readable);
        FD_SET(interruption.descriptor(), &readable);
        int limit = interruption.descriptor() + 1;
        timeval timeout{};
        int block = 1;
        snmp_select_info(&limit, &readable, &timeout, &block);
        if (select(limit, &readable, nullptr, nullptr, block != 0 ? nullptr : &timeout) <= 0) {
            snmp_timeout();
            continue;
        }
        if (FD_ISSET(interruption.descriptor(), &readable)) {
            return;
        }
        snmp_read(&readable);
    }
}

} // namespace

std::string trapText(const std::vector<Variable> &variables, const Settings &settings) {
    const std::string notification = notificationOf(variables);
    const Explanation *const known = explanationOf(notification);
    std::string text = settings.style.active(nameOfNotification(notification));
    for (const Variable &value : valuesOf(variables)) {
        const std::string name = nameOf(value.identifier);
        text += (known != nullptr && name == known->name ? " is " : ", " + name + " is ") + meaningOf(value, settings);
    }
    return known != nullptr ? text + ": " + known->reason : text;
}

nlohmann::ordered_json trapJson(const std::vector<Variable> &variables, const Settings &settings) {
    const std::string notification = notificationOf(variables);
    nlohmann::ordered_json result = {{"notification", notification}, {"name", nameOfNotification(notification)}};
    for (const Variable &value : valuesOf(variables)) {
        result["values"][nameOf(value.identifier)] = jsonOf(value, settings);
    }
    return result;
}

void receiveTraps(const Invocation &invocation) {
    startReceiver();
    createUser(invocation);
    netsnmp_transport *const transport = netsnmp_transport_open_server("ptzctl", invocation.listen.c_str());
    if (transport == nullptr) {
        throw Failure(ExitCode::BadAnswer, "cannot listen at " + invocation.listen,
                      "is another receiver there, or does the port need privileges?");
    }
    Receiver receiver{invocation, transport};
    const Interruption interruption;
    netsnmp_session wanted;
    snmp_sess_init(&wanted);
    wanted.peername = nullptr;
    wanted.version = SNMP_DEFAULT_VERSION;
    wanted.community_len = SNMP_DEFAULT_COMMUNITY_LEN;
    wanted.callback = take;
    wanted.callback_magic = &receiver;
    wanted.authenticator = nullptr;
    wanted.isAuthoritative = SNMP_SESS_UNKNOWNAUTH;
    netsnmp_session *const session = snmp_add(&wanted, transport, nullptr, nullptr);
    if (session == nullptr) {
        throw Failure(ExitCode::BadAnswer, "cannot receive at " + invocation.listen + ": " + libraryError(nullptr));
    }
    std::cerr << "Receiving at " << invocation.listen << "; Ctrl-C ends it.\n";
    receive(receiver, interruption);
    snmp_close(session);
}

} // namespace ptzctl
