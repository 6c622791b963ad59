// SPDX-License-Identifier: Apache-2.0
// Clients that violate the protocol on each kind of socket, without effects on others.
#include <random>

#include <gmock/gmock.h>

#include "camera_process.h"
#include "process_information.h"
#include "wire.h"

using namespace camera::test;
using namespace support;

namespace {

/** Attack on a socket, over connections of its own. */
struct Hostility {
    const char *name;
    void (*commit)(const std::string &directory, const std::string &socket);
};

void PrintTo(const Hostility &hostility, std::ostream *stream) {
    *stream << hostility.name;
}

/** Returns random octets with newlines, the same in each call. */
std::string rubbish() {
    std::mt19937 generator(1); // NOLINT(cert-msc51-cpp): a failure must come again
    std::uniform_int_distribution<int> octet(0, 255);
    std::string octets(50000, '\0');
    for (char &each : octets) {
        each = static_cast<char>(octet(generator));
    }
    return octets + "\n";
}

void sendRubbish(const std::string &directory, const std::string &socket) {
    LineClient client(directory, socket);
    client.send(rubbish());
    client.finish();
    EXPECT_TRUE(client.ends());
}

void leaveInTheMiddle(const std::string &directory, const std::string &socket) {
    for (std::size_t length = 1; length <= kTemperatureRequest.size(); ++length) {
        LineClient(directory, socket).send(kTemperatureRequest.substr(0, length));
    }
    LineClient(directory, socket).send(rubbish() + kTemperatureRequest);
}

void leaveBeforeTheAnswer(const std::string &directory, const std::string &socket) {
    std::string requests;
    for (int i = 0; i < 100; ++i) {
        requests += kTemperatureRequest + "\n";
    }
    for (int i = 0; i < 20; ++i) {
        LineClient(directory, socket).send(requests + kTemperatureRequest);
    }
}

void announceALength(const std::string &directory, const std::string &socket) {
    constexpr std::size_t kAnnounced = 100U << 20U;
    const std::string binary{static_cast<char>(kAnnounced >> 24U & 0xFFU), static_cast<char>(kAnnounced >> 16U & 0xFFU),
                             '\0', '\0'};
    for (const std::string &length : {binary, std::to_string(kAnnounced) + "\n", std::string(4, '\xff')}) {
        LineClient(directory, socket).send(length + kTemperatureRequest);
    }
}

/** Sends a line of 100 MiB, which a vulnerable server would store. */
void sendAnEndlessLine(const std::string &directory, const std::string &socket) {
    constexpr std::size_t kEndless = 100U << 20U;
    const std::string part(wire::kMaximumLine, '[');
    LineClient client(directory, socket);
    std::size_t sent = 0;
    EXPECT_TRUE(eventually([&] {
        const std::optional<std::size_t> count = client.sendWhatFits(part);
        sent += count.value_or(0);
        return !count || sent >= kEndless;
    }));
    EXPECT_LT(sent, kEndless) << "the camera has taken it all";
}

const Hostility kHostilities[] = {
    {"Rubbish", sendRubbish},
    {"HalfMessages", leaveInTheMiddle},
    {"NoPatience", leaveBeforeTheAnswer},
    {"AnAnnouncedLength", announceALength},
    {"AnEndlessLine", sendAnEndlessLine},
};

class HostileClients : public testing::TestWithParam<std::tuple<const char *, Hostility>> {};

TEST_P(HostileClients, HarmNobodyElse) {
    const auto &[socket, hostility] = GetParam();
    const TemporaryDirectory root;
    const std::string directory = root.file("sockets");
    RunningCamera camera(directory);
    LineClient witness(directory, "temperature");
    LineClient control(directory, "control");
    EXPECT_EQ(kTemperatureAnswer, witness.ask(kTemperatureRequest));
    const auto services = [&control] { return control.call({{"command", "state"}}).at("state").at("services"); };
    const nlohmann::json state = services();
    const std::size_t before = peakKilobytes(camera.pid());
    hostility.commit(directory, socket);
    EXPECT_EQ(kTemperatureAnswer, witness.ask(kTemperatureRequest));
    EXPECT_EQ(kTemperatureAnswer, LineClient(directory, "temperature").ask(kTemperatureRequest));
    EXPECT_EQ(state, services()) << "something has changed in the camera";
    constexpr std::size_t kSomeMemory = 8U << 10U;
    EXPECT_LT(peakKilobytes(camera.pid()), before + kSomeMemory);
}

INSTANTIATE_TEST_SUITE_P(Sockets, HostileClients,
                         testing::Combine(testing::Values("temperature", "directory", "control"),
                                          testing::ValuesIn(kHostilities)),
                         [](const auto &each) {
                             return std::string(std::get<0>(each.param)) + std::get<1>(each.param).name;
                         });

} // namespace
