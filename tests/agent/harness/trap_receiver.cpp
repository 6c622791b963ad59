// SPDX-License-Identifier: Apache-2.0
#include "trap_receiver.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <stdexcept>
#include <utility>

#include "eventually.h"
#include "object_oids.h"
#include "settings.h"

namespace harness {

namespace {

constexpr const char *kLineStart = "TRAP ";

// Octets in hexadecimal and without line breaks, times as numbers, OIDs in full, tabs between varbinds: only so
// can a line be parsed for all values.
const std::vector<std::string> kNumericOutput{"-On", "-Oe", "-OU", "-Ot", "-Ox"};

std::vector<std::string> splitAtTabs(const std::string &line) {
    std::vector<std::string> parts;
    std::size_t start = 0;
    for (std::size_t end = line.find('\t'); end != std::string::npos; end = line.find('\t', start)) {
        parts.push_back(line.substr(start, end - start));
        start = end + 1;
    }
    parts.push_back(line.substr(start));
    return parts;
}

std::string octetsFromHexadecimal(const std::string &text) {
    std::string result;
    for (std::size_t i = 0; i + 1 < text.size(); i += 3) {
        result += static_cast<char>(std::stoul(text.substr(i, 2), nullptr, 16));
    }
    return result;
}

std::string octetsFromAddress(const std::string &text) {
    std::string result;
    for (const std::uint32_t number : snmp::parseOid(text)) {
        result += static_cast<char>(number);
    }
    return result;
}

/** Reads `TYPE: value` as the receiver prints it with the options of TrapReceiver. */
void readValue(const std::string &printed, Varbind &varbind) {
    static constexpr std::array<std::pair<const char *, Type>, 4> kNumbers{{
        {"INTEGER: ", Type::Integer},
        {"Gauge32: ", Type::Gauge32},
        {"Counter32: ", Type::Counter32},
        {"Counter64: ", Type::Counter64},
    }};
    const auto startsWith = [&printed](const std::string &start) { return printed.rfind(start, 0) == 0; };
    const std::string value = printed.substr(std::min(printed.size(), printed.find(": ") + 2));
    const auto *number =
        std::find_if(kNumbers.begin(), kNumbers.end(), [&](const auto &entry) { return startsWith(entry.first); });
    if (number != kNumbers.end()) {
        varbind.type = number->second;
        varbind.number = std::stoll(value);
    } else if (startsWith("OID: ")) {
        varbind.type = Type::Oid;
        varbind.octets = value;
    } else if (startsWith("Hex-STRING: ")) {
        varbind.type = Type::Octets;
        varbind.octets = octetsFromHexadecimal(value);
    } else if (printed == "\"\"") {
        varbind.type = Type::Octets;
    } else if (startsWith("IpAddress: ")) {
        varbind.type = Type::IpAddress;
        varbind.octets = octetsFromAddress(value);
    } else if (printed == "NULL") {
        varbind.type = Type::Null;
    } else if (!printed.empty() && printed.find_first_not_of("0123456789") == std::string::npos) {
        varbind.type = Type::TimeTicks;
        varbind.number = std::stoll(printed);
    } else {
        throw std::runtime_error("the trap receiver printed a value of an unknown kind: " + printed);
    }
}

Trap readTrap(const std::string &line) {
    const std::vector<std::string> parts = splitAtTabs(line);
    Trap trap;
    trap.kind = parts.front();
    for (std::size_t i = 1; i < parts.size(); ++i) {
        const std::size_t equals = parts[i].find(" = ");
        if (equals == std::string::npos) {
            throw std::runtime_error("the trap receiver printed no varbind: " + parts[i]);
        }
        Varbind varbind;
        varbind.oid = parts[i].substr(0, equals);
        readValue(parts[i].substr(equals + 3), varbind);
        trap.varbinds.push_back(varbind);
    }
    return trap;
}

} // namespace

std::string Trap::notification() const {
    const auto found = std::find_if(varbinds.begin(), varbinds.end(),
                                    [](const Varbind &varbind) { return varbind.oid == oids::snmpTrapOID; });
    return found != varbinds.end() ? found->octets : "";
}

std::ostream &operator<<(std::ostream &stream, const Trap &trap) {
    stream << trap.kind;
    for (const Varbind &varbind : trap.varbinds) {
        stream << "\n  " << varbind;
    }
    return stream;
}

TrapReceiver::TrapReceiver(Transport transport, const std::vector<std::string> &configuration,
                           const std::string &mibModules)
    : port_(transport == Transport::Datagram ? std::make_unique<ReservedPort>() : nullptr) {
    std::string text = "snmpTrapdAddr " + peer() + "\ndisableAuthorization yes\n";
    for (const std::string &line : configuration) {
        text += line + "\n";
    }
    text += "[snmp] hexOutputLength 0\n";
    std::vector<std::string> arguments{trapReceiverPath(),
                                       "-C",
                                       "-c",
                                       directory_.write("snmptrapd.conf", text),
                                       "-f",
                                       "-n",
                                       "-X",
                                       "-Lf",
                                       log().path(),
                                       "-F",
                                       std::string(kLineStart) + "%P\\t%V\\t%v\\n"};
    const std::vector<std::string> output =
        mibModules.empty() ? kNumericOutput : std::vector<std::string>{"-M", mibsDirectory(), "-m", mibModules};
    arguments.insert(arguments.end(), output.begin(), output.end());
    process_ = std::make_unique<Process>(Launch{arguments,
                                                {{"SNMP_PERSISTENT_DIR", directory_.file("persistent")},
                                                 {"SNMPCONFPATH", directory_.path()},
                                                 {"MIBS", ""},
                                                 {"MIBDIRS", directory_.path()}},
                                                directory_.file("receiver.out"),
                                                directory_.file("receiver.err")});
    eventually(std::chrono::seconds(20), [this] { return isReachable() || !process_->running(); });
    if (!process_->running() || !isReachable()) {
        throw std::runtime_error("the trap receiver does not start\n" + log().tail(20) +
                                 LogFile(directory_.file("receiver.err")).tail(20));
    }
}

std::string TrapReceiver::socketPath() const {
    return directory_.file("traps.socket");
}

bool TrapReceiver::isReachable() const {
    return port_ ? ReservedPort::isBound(port_->number()) : std::filesystem::exists(socketPath());
}

std::string TrapReceiver::peer() const {
    return port_ ? "127.0.0.1:" + std::to_string(port_->number()) : "unix:" + socketPath();
}

std::string TrapReceiver::configurationLine() const {
    return "trap2sink " + peer() + " public";
}

LogFile TrapReceiver::log() const {
    return LogFile(directory_.file("traps.log"));
}

std::vector<std::string> TrapReceiver::printed() const {
    std::vector<std::string> result;
    for (const std::string &line : log().lines()) {
        if (line.rfind(kLineStart, 0) == 0) {
            result.push_back(line.substr(std::string(kLineStart).size()));
        }
    }
    return result;
}

std::vector<Trap> TrapReceiver::traps() const {
    std::vector<Trap> result;
    for (const std::string &line : printed()) {
        result.push_back(readTrap(line));
    }
    return result;
}

std::optional<Trap> TrapReceiver::waitFor(const std::function<bool(const Trap &)> &wanted,
                                          std::chrono::milliseconds deadline) const {
    std::optional<Trap> result;
    eventually(deadline, [&] {
        const std::vector<Trap> all = traps();
        const auto found = std::find_if(all.begin(), all.end(), wanted);
        if (found != all.end()) {
            result = *found;
        }
        return result.has_value();
    });
    return result;
}

bool TrapReceiver::waitForCount(std::size_t count, std::chrono::milliseconds deadline) const {
    return eventually(deadline, [&] { return traps().size() >= count; });
}

} // namespace harness
