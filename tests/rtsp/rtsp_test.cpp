// SPDX-License-Identifier: Apache-2.0
// The RTSP server with a simulated camera, its panel, and a client that decodes the streams.
#include <algorithm>
#include <regex>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "camera.h"
#include "eventually.h"
#include "process.h"
#include "process_information.h"

namespace {

using namespace support;
using testing::HasSubstr;

constexpr std::chrono::seconds kDecoding{60};

/** Returns the first match of a pattern's group in a program's output; empty if it does not come. */
std::string awaitOutput(const Process &process, const std::string &pattern) {
    std::smatch match;
    std::string text;
    const bool found = eventually([&] {
        text = process.output().text();
        return std::regex_search(text, match, std::regex(pattern));
    });
    EXPECT_TRUE(found) << pattern << " is not in: " << text << process.errors().text();
    return found ? match[1].str() : "";
}

/** A camera with a panel. The agent is missing, which the picture does not need. */
class Panel {
public:
    explicit Panel(std::string address = "127.0.0.1:0")
        : camera_("dome"), process_({{PANEL_PROGRAM, "--camera", camera_.directory(), "--agent", "127.0.0.1:9",
                                      "--listen", std::move(address)}}),
          address_(awaitOutput(process_, "http://([0-9.:]+)")) {}

    const std::string &address() const {
        return address_;
    }

    Process &process() {
        return process_;
    }

private:
    Camera camera_;
    Process process_;
    std::string address_;
};

/** An RTSP server for a panel. */
class Server {
public:
    explicit Server(const std::string &panel)
        : process_({{RTSP_PROGRAM, "--panel", panel, "--listen", "127.0.0.1:0"}}),
          base_(awaitOutput(process_, "(rtsp://[0-9.:]+)/camera and")) {}

    Process &process() {
        return process_;
    }

    /** The command of a client that decodes a stream for some seconds. */
    std::vector<std::string> client(const std::string &stream, const std::string &transport, int seconds) const {
        return {FFPROBE_PROGRAM,
                "-v",
                "error",
                "-rtsp_transport",
                transport,
                "-count_frames",
                "-read_intervals",
                "%+" + std::to_string(seconds),
                "-show_entries",
                "stream=codec_name,width,height,nb_read_frames",
                "-of",
                "compact",
                base_ + stream};
    }

    /** Decodes two seconds of a stream. @return what the client says of it */
    CommandResult decode(const std::string &stream, const std::string &transport = "tcp") const {
        return runCommand(client(stream, transport, 2), {}, kDecoding);
    }

private:
    Process process_;
    std::string base_;
};

struct Stream {
    const char *name;
    const char *path;
    const char *transport;
    const char *codec;
};

class Streams : public testing::TestWithParam<Stream> {};

std::string nameOf(const testing::TestParamInfo<Stream> &stream) {
    return stream.param.name;
}

TEST_P(Streams, AreDecoded) {
    Panel panel;
    const Server server(panel.address());
    const CommandResult result = server.decode(GetParam().path, GetParam().transport);
    EXPECT_TRUE(result.status.clean()) << result.status.describe();
    // UDP loses packets on a busy machine, and the client says so.
    if (GetParam().transport != std::string("udp")) {
        EXPECT_EQ(result.errors, "");
    }
    std::smatch frames;
    EXPECT_THAT(result.output, HasSubstr(std::string("codec_name=") + GetParam().codec + "|width=1280|height=720"));
    ASSERT_TRUE(std::regex_search(result.output, frames, std::regex("nb_read_frames=([0-9]+)"))) << result.output;
    // Two seconds of 15 pictures per second, of which a busy machine skips some.
    EXPECT_GE(std::stoi(frames[1].str()), 10);
}

INSTANTIATE_TEST_SUITE_P(Client, Streams,
                         testing::Values(Stream{"H264OverTcp", "/camera", "tcp", "h264"},
                                         Stream{"H264OverUdp", "/camera", "udp", "h264"},
                                         Stream{"JpegOverTcp", "/camera-mjpeg", "tcp", "mjpeg"},
                                         Stream{"JpegOverUdp", "/camera-mjpeg", "udp", "mjpeg"}),
                         nameOf);

} // namespace

TEST(RtspServer, HasNoStreamWithoutAPanelAndGoesOn) {
    std::string address;
    {
        const Panel gone;
        address = gone.address();
    }
    Server server(address);
    const CommandResult refused = server.decode("/camera");
    EXPECT_FALSE(refused.status.clean());
    EXPECT_THAT(refused.errors, HasSubstr("503"));
    EXPECT_THAT(server.decode("/nothing").errors, HasSubstr("404"));

    const Panel back(address);
    EXPECT_TRUE(server.decode("/camera-mjpeg").status.clean());
    EXPECT_EQ(server.process().end().describe(), ExitStatus{}.describe());
}

TEST(RtspServer, ListensOnTheLoopbackInterfaceOnly) {
    const Panel panel;
    Server server(panel.address());
    const Process client({server.client("/camera", "udp", 30)});
    std::vector<std::string> open;
    EXPECT_TRUE(eventually([&] {
        open = sockets(server.process().pid());
        return std::any_of(open.begin(), open.end(),
                           [](const std::string &socket) { return socket.rfind("udp ", 0) == 0; });
    }));
    for (const std::string &socket : open) {
        EXPECT_THAT(socket, testing::AnyOf(testing::StartsWith("tcp 127.0.0.1:"), testing::StartsWith("udp 127.0.0.1:"),
                                           testing::StartsWith("unix")));
    }
}

TEST(RtspServer, RefusesAWrongCommandLine) {
    for (const std::vector<std::string> &arguments :
         {std::vector<std::string>{"--panel", "nowhere"}, {"--listen", "127.0.0.1:70000"}, {"--fps", "0"}, {"extra"}}) {
        std::vector<std::string> command{RTSP_PROGRAM};
        command.insert(command.end(), arguments.begin(), arguments.end());
        const CommandResult result = runCommand(command);
        EXPECT_EQ(result.status.code, 2) << arguments.front();
        EXPECT_THAT(result.errors, testing::StartsWith("quarnsnmp-rtsp: "));
    }
}
