// SPDX-License-Identifier: Apache-2.0
// The panel with a real camera and a real agent.
#include <fstream>

#include <gmock/gmock.h>

#include "agent.h"
#include "eventually.h"
#include "http_client.h"
#include "manager.h"
#include "object_oids.h"
#include "reserved_port.h"
#include "running_panel.h"
#include "settings.h"
#include "support/camera.h"

namespace harness {
namespace {

using nlohmann::json;

AgentOptions watchedAgent(const Camera &camera, std::uint16_t trapPort) {
    AgentOptions options = withModule(camera.directory());
    if (!watchModulePath().empty()) {
        options.configuration.push_back("dlmod quarnsnmp_watch " + watchModulePath());
    }
    options.configuration.push_back("trap2sink 127.0.0.1:" + std::to_string(trapPort) + " public");
    return options;
}

/** A camera, its agent and a panel that shows them. */
class PanelTest : public testing::Test {
protected:
    PanelTest()
        : camera_("dome"), agent_(watchedAgent(camera_, traps_.number())),
          panel_({"--camera", camera_.directory(), "--agent", agent_.peer(), "--trap-listen",
                  "127.0.0.1:" + std::to_string(traps_.number()), "--size", "160x90"}),
          port_(panel_.port()) {}

    json act(const json &body) const {
        return httpPost(port_, "/api/action", body).json();
    }

    json target(const std::string &service, const std::string &name) const {
        return json::parse(camera_.control("state").output)["services"][service]["targets"][name];
    }

    /** Waits for a log entry with a member of this value. */
    static json awaitLog(EventStream &page, const std::string &key, const std::string &value) {
        const auto event = page.waitFor(
            [&](const ServerEvent &each) { return each.name == "log" && each.data.value(key, json()) == value; });
        return event ? event->data : json();
    }

    static json awaitStatus(EventStream &page, const std::string &event, const std::string &status) {
        const auto found = page.waitFor(
            [&](const ServerEvent &each) { return each.name == event && each.data.value("status", "") == status; });
        return found ? found->data : json();
    }

    ReservedPort traps_;
    Camera camera_;
    Agent agent_;
    RunningPanel panel_;
    std::uint16_t port_;
};

TEST_F(PanelTest, MovesTheCameraOverSnmp) {
    EventStream page(port_);
    const json report = act({{"action", "to"}, {"axes", {{"pan", 90}, {"tilt", -10}}}, {"speed", 127}});
    EXPECT_EQ(report["status"], "noError") << report;
    EXPECT_EQ(report["lines"]["snmpset"], "snmpset -v2c -c private -m '' " + agent_.peer() + " " + oids::positionPan +
                                              " x 027F2823 " + oids::positionTilt + " x 027FB888");
    EXPECT_EQ(report["lines"]["ptzctl"][0], "ptzctl -H " + agent_.peer() + " -c private pan to 90 --speed 127");
    EXPECT_EQ(report["objects"][0]["parts"][0]["meaning"], "absolute");
    EXPECT_GT(report["durationUs"], 0);
    EXPECT_FALSE(awaitLog(page, "name", "move_stopped").is_null());
    EXPECT_TRUE(eventually([&] { return target("positioning", "positioning/1")["pan"]["position"] == 90000; }));
    const auto view = page.waitFor([](const ServerEvent &event) {
        return event.name == "camera" && event.data["view"].value("pan", 0.0) == 90.0;
    });
    ASSERT_TRUE(view);
    EXPECT_EQ(view->data["stale"], false);
}

TEST_F(PanelTest, ReportsRefusals) {
    const json refused = act({{"action", "set"}, {"object", "timeoutPan"}, {"value", "70000"}});
    EXPECT_EQ(refused["status"], "wrongValue");
    EXPECT_EQ(refused["ok"], false);
    EXPECT_EQ(refused["errorIndex"], 1);
    EXPECT_NE(refused["advice"], "");
    const json read = act({{"action", "get"}, {"object", "modelName"}});
    EXPECT_EQ(read["objects"][0]["value"], "QN-4000 Dome") << read;
    for (const auto &[path, body] :
         std::vector<std::pair<std::string, json>>{{"/api/action", {{"action", "jump"}}},
                                                   {"/api/action", json::array()},
                                                   {"/api/control", {{"command", "follow"}}},
                                                   {"/api/scenario", {{"play", 1}}},
                                                   {"/api/scenario", {{"play", "warm-up"}, {"speed", 0}}}}) {
        const HttpResponse response = httpPost(port_, path, body);
        EXPECT_EQ(response.status, 400) << path << body;
        EXPECT_TRUE(response.json()["error"].is_string());
    }
    EXPECT_EQ(httpPost(port_, "/api/action?camera=1", {{"action", "stop"}}).status, 404);
}

TEST_F(PanelTest, ShowsRequestsAndTrapsOfTheAgent) {
    EventStream page(port_);
    const auto hello = page.next();
    ASSERT_TRUE(hello);
    EXPECT_EQ(hello->data["agent"], agent_.peer());
    EXPECT_EQ(hello->data["watch"]["listening"], true);
    if (!watchModulePath().empty()) {
        ASSERT_TRUE(Manager(agent_.peer()).set({octetString(oids::positionPan, std::string("\x02\x40\x28\x23"))}).ok());
        const json entry = awaitLog(page, "operation", "SET");
        EXPECT_EQ(entry["name"], "positionPan");
        EXPECT_EQ(entry["meaning"], "to 90.00° at speed 64");
        EXPECT_EQ(entry["as"], "private");
        EXPECT_EQ(entry["outcome"], "noError");
        const auto row = page.waitFor([](const ServerEvent &event) {
            return event.name == "objects" &&
                   event.data.dump().find("\"written\":{\"as\":\"private\"") != std::string::npos;
        });
        EXPECT_TRUE(row);
    }
    agent_.hup();
    EXPECT_EQ(awaitLog(page, "kind", "trap")["name"], "nsNotifyRestart");
    const HttpResponse log = httpGet(port_, "/api/log");
    EXPECT_EQ(log.headers.at("content-type"), "application/x-ndjson");
    EXPECT_THAT(log.body, testing::HasSubstr("nsNotifyRestart"));
}

TEST_F(PanelTest, ReadsTheObjects) {
    EventStream page(port_);
    const auto row = page.waitFor([](const ServerEvent &event) {
        if (event.name != "objects") {
            return false;
        }
        for (const json &each : event.data["objects"]) {
            if (each["name"] == "relayStatesTable.3.2" && each["value"] == "0") {
                return each["meaning"] == "off" && each["stale"] == false;
            }
        }
        return false;
    });
    EXPECT_TRUE(row);
}

TEST_F(PanelTest, ControlsTheCameraItself) {
    const json done =
        httpPost(port_, "/api/control", {{"command", "set"}, {"target", "alarm/2"}, {"field", "state"}, {"value", 1}})
            .json();
    EXPECT_EQ(done["line"], "quarnsnmp-camctl --directory " + camera_.directory() + " set alarm/2 state 1");
    EXPECT_EQ(done["message"], "alarm/2 state is 1");
    EXPECT_EQ(target("alarm", "alarm/2")["state"], 1);
    const json refused = httpPost(port_, "/api/control", {{"command", "down"}, {"service", "radar"}}).json();
    EXPECT_EQ(refused["ok"], false);
    EventStream page(port_);
    EXPECT_EQ(httpGet(port_, "/api/scenarios").json()["scenarios"].size(), 2U);
    EXPECT_EQ(httpPost(port_, "/api/scenario", {{"play", "../cameras/dome"}}).json()["ok"], false);
    EXPECT_EQ(httpPost(port_, "/api/scenario", {{"play", "warm-up"}, {"speed", 100000}}).json()["ok"], true);
    EXPECT_EQ(awaitStatus(page, "scenario", "done")["step"], 8);
    EXPECT_EQ(httpPost(port_, "/api/scenario", {{"play", "warm-up"}}).json()["ok"], true);
    EXPECT_EQ(httpPost(port_, "/api/scenario", {{"play", "warm-up"}}).json()["message"], "warm-up is playing");
    EXPECT_EQ(httpPost(port_, "/api/scenario", {{"stop", true}}).json()["ok"], true);
    EXPECT_FALSE(awaitStatus(page, "scenario", "stopped").is_null());
}

TEST_F(PanelTest, ServesThePageAndPictures) {
    const HttpResponse index = httpGet(port_, "/");
    EXPECT_EQ(index.headers.at("content-type"), "text/html; charset=utf-8");
    EXPECT_EQ(httpRequest(port_, "GET / HTTP/1.1\r\nHost: localhost\r\nIf-None-Match: " + index.headers.at("etag") +
                                     "\r\n\r\n")
                  .status,
              304);
    EXPECT_EQ(httpGet(port_, "/../main.cpp").status, 404);
    EXPECT_EQ(httpGet(port_, "/..%2f..%2fetc/passwd").status, 404);
    const HttpResponse wrong = httpPost(port_, "/events", {});
    EXPECT_EQ(wrong.status, 405);
    EXPECT_EQ(wrong.headers.at("allow"), "GET, HEAD");
    EXPECT_EQ(httpGet(port_, "/api/action").status, 405);
    const HttpResponse snapshot = httpGet(port_, "/snapshot.jpg");
    EXPECT_EQ(snapshot.headers.at("content-type"), "image/jpeg");
    EXPECT_EQ(snapshot.body.substr(0, 2), "\xFF\xD8");
    HttpConnection video(port_);
    video.send("GET /stream.mjpeg HTTP/1.0\r\n\r\n");
    for (int i = 0; i < 3; ++i) {
        const auto head = video.readUntil("Content-Length: ");
        const auto length = video.readUntil("\r\n\r\n");
        ASSERT_TRUE(head && length);
        const auto frame = video.readOctets(std::stoul(*length));
        ASSERT_TRUE(frame);
        EXPECT_EQ(frame->substr(0, 2), "\xFF\xD8");
        EXPECT_EQ(frame->substr(frame->size() - 2), "\xFF\xD9");
    }
}

TEST_F(PanelTest, SaysWhenTheCameraGoesAndComesBack) {
    EventStream page(port_);
    EXPECT_EQ(awaitStatus(page, "camera", "up")["stale"], false);
    camera_.kill();
    const json gone = awaitStatus(page, "camera", "gone");
    EXPECT_EQ(gone["stale"], true);
    EXPECT_EQ(gone["message"], "the camera has ended");
    EXPECT_EQ(httpGet(port_, "/snapshot.jpg").body.substr(0, 2), "\xFF\xD8");
    EXPECT_EQ(httpPost(port_, "/api/control", {{"command", "down"}, {"service", "alarm"}}).status, 503);
    camera_.start();
    EXPECT_EQ(awaitStatus(page, "camera", "up")["stale"], false);
    act({{"action", "reboot"}});
    EXPECT_EQ(awaitStatus(page, "camera", "rebooting")["stale"], true);
}

TEST_F(PanelTest, AnswersWhileTheCameraHangs) {
    EventStream page(port_);
    EXPECT_FALSE(awaitStatus(page, "agent", "up").is_null());
    camera_.signal(SIGSTOP);
    EXPECT_FALSE(awaitStatus(page, "agent", "waiting").is_null());
    EXPECT_EQ(awaitStatus(page, "camera", "gone")["message"], "the camera does not answer");
    EXPECT_EQ(httpGet(port_, "/").status, 200);
    EXPECT_EQ(httpGet(port_, "/snapshot.jpg").status, 200);
    camera_.signal(SIGCONT);
    EXPECT_FALSE(awaitStatus(page, "agent", "up").is_null());
    EXPECT_FALSE(awaitStatus(page, "camera", "up").is_null());
}

class PanelSlowTest : public PanelTest {};

TEST_F(PanelSlowTest, SaysWhenTheAgentRestarts) {
    EventStream page(port_);
    EXPECT_FALSE(awaitStatus(page, "agent", "up").is_null());
    agent_.stop();
    EXPECT_FALSE(awaitStatus(page, "agent", "silent").is_null());
    const auto rows = page.waitFor(
        [](const ServerEvent &event) { return event.name == "objects" && event.data["objects"].size() > 20; });
    ASSERT_TRUE(rows);
    for (const json &row : rows->data["objects"]) {
        EXPECT_EQ(row["stale"], true) << row["name"];
    }
    agent_.start();
    EXPECT_FALSE(awaitStatus(page, "agent", "up").is_null());
}

TEST_F(PanelTest, StopsTheCameraWhenThePageIsGone) {
    {
        EventStream page(port_);
        const auto hello = page.next();
        ASSERT_TRUE(hello);
        const json report = act({{"action", "towards"}, {"axes", {{"pan", 100}}}, {"client", hello->data["client"]}});
        ASSERT_EQ(report["ok"], true) << report;
        EXPECT_TRUE(eventually([&] { return target("positioning", "positioning/1")["pan"]["moving"] == true; }));
    }
    EXPECT_TRUE(eventually([&] { return target("positioning", "positioning/1")["pan"]["moving"] == false; }));
}

TEST_F(PanelSlowTest, StopsBeforeWhatWaits) {
    camera_.control("delay", "positioning", "*", "1000", "--always");
    std::vector<std::unique_ptr<HttpConnection>> moves;
    for (int i = 0; i < 3; ++i) {
        const std::string body = json({{"action", "by"}, {"axes", {{"pan", 1}}}}).dump();
        moves.push_back(std::make_unique<HttpConnection>(port_));
        moves.back()->send("POST /api/action HTTP/1.1\r\nHost: localhost\r\nX-Quarnsnmp-Panel: 1\r\n"
                           "Content-Type: application/json\r\nContent-Length: " +
                           std::to_string(body.size()) + "\r\n\r\n" + body);
    }
    // The third one waits as soon as the agent has the first one.
    EXPECT_TRUE(eventually([&] {
        EventStream page(port_);
        const auto agent = page.waitFor([](const ServerEvent &event) { return event.name == "agent"; });
        return agent && agent->data["queue"] == 2;
    }));
    EXPECT_EQ(act({{"action", "stop"}})["action"], "stop");
    EXPECT_EQ(moves[2]->receive().json()["status"], "superseded");
}

} // namespace
} // namespace harness
