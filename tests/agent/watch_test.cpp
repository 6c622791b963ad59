// SPDX-License-Identifier: Apache-2.0
// The module that reports requests: what it reports, that nothing else changes, and that it can go at any time.
#include <cerrno>
#include <cstring>
#include <deque>
#include <iostream>

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "camera.h"
#include "camera_agent.h"
#include "eventually.h"
#include "footprint.h"
#include "object_oids.h"
#include "observation.h"
#include "position_commands.h"
#include "process_information.h"
#include "settings.h"

namespace {

using namespace harness;
using namespace position_commands;
using namespace std::string_literals;
using nlohmann::json;
using testing::ElementsAre;
using testing::IsEmpty;

/** The receiver of the reports. */
class Receiver {
public:
    explicit Receiver(const Camera &camera) : path_(camera.directory() + "/watch.sock") {
        socket_ = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        path_.copy(&address.sun_path[0], sizeof address.sun_path - 1);
        if (socket_ < 0 || bind(socket_, reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0) {
            throw std::runtime_error("no socket " + path_ + ": " + std::strerror(errno));
        }
    }

    ~Receiver() {
        close(socket_);
        unlink(path_.c_str());
    }

    Receiver(const Receiver &) = delete;
    Receiver &operator=(const Receiver &) = delete;

    /** Returns the reports that have arrived. The agent sends the first ten or so before its answer. */
    std::vector<json> take() {
        std::vector<json> reports;
        std::string buffer(65536, '\0');
        ssize_t length = 0;
        while ((length = recv(socket_, buffer.data(), buffer.size(), 0)) >= 0) {
            reports.push_back(json::parse(buffer.substr(0, static_cast<std::size_t>(length))));
        }
        return reports;
    }

    /** Waits for a number of reports. @return those that have arrived, at most that number unless there are more */
    std::vector<json> take(std::size_t count) {
        std::vector<json> reports;
        eventually([&] {
            const std::vector<json> arrived = take();
            reports.insert(reports.end(), arrived.begin(), arrived.end());
            return reports.size() >= count;
        });
        return reports;
    }

private:
    std::string path_;
    int socket_ = -1;
};

std::string withoutDot(const std::string &oid) {
    return oid.substr(1);
}

/** Lines that load both modules. */
AgentOptions watched(const Camera &camera, bool watchFirst) {
    AgentOptions options = withModule(camera.directory());
    if (watchFirst) {
        options.configuration = {"dlmod quarnsnmp_watch " + watchModulePath()};
    } else {
        options.configuration = {"dlmod quarnsnmp " + options.module};
        options.moduleName = "quarnsnmp_watch";
        options.module = watchModulePath();
    }
    return options;
}

/** A camera, a receiver, and an agent with both modules. */
class WatchTest : public testing::Test {
protected:
    explicit WatchTest(bool watchFirst = false)
        : camera_("dome"), receiver_(camera_), agent_(watched(camera_, watchFirst)), manager_(agent_.peer()) {
        receiver_.take();
    }

    /** Returns some members of the only report. */
    std::vector<std::string> only(const std::vector<std::string> &members) {
        const std::vector<json> reports = receiver_.take();
        EXPECT_EQ(reports.size(), 1U) << json(reports);
        std::vector<std::string> texts;
        for (const std::string &member : members) {
            if (reports.empty() || !reports.front().contains(member)) {
                texts.emplace_back("none");
            } else {
                const json &value = reports.front().at(member);
                texts.push_back(value.is_string() ? value.get<std::string>() : value.dump());
            }
        }
        return texts;
    }

    Camera camera_;
    Receiver receiver_;
    Agent agent_;
    Manager manager_;
};

class WatchFirstTest : public WatchTest {
protected:
    WatchFirstTest() : WatchTest(true) {}
};

/** A row of the table of requests: what happens, and the reports without times and addresses. */
struct Reported {
    std::string name;
    std::function<void(Manager &)> request;
    std::vector<std::string> reports; ///< operation, phase, OID, type, value and outcome
};

std::string line(const json &report) {
    std::string value = "-";
    if (report.contains("octets")) {
        value = report.at("octets").get<std::string>();
    } else if (report.contains("number")) {
        value = report.at("number").dump();
    }
    return report.at("operation").get<std::string>() + " " + report.at("phase").get<std::string>() + " ." +
           report.at("oid").get<std::string>() + " " + report.at("type").get<std::string>() + " " + value + " " +
           report.at("outcome").get<std::string>();
}

std::vector<Reported> requests() {
    const std::string pan = oids::positionPan;
    const std::string tilt = oids::positionTilt;
    const std::string timeout = oids::timeoutPan;
    const std::string input = oids::row(oids::alarmStatesState, 1);
    return {
        {"AGet",
         [=](Manager &manager) { manager.get(timeout, input); },
         {"GET get " + timeout + " Integer32 -1 noError", "GET get " + input + " Integer32 0 noError"}},
        {"AGetOfAMissingRow",
         [=](Manager &manager) {
             EXPECT_EQ(manager.get(oids::row(oids::alarmStatesState, 99)).error, ErrorStatus::GenErr);
         },
         {"GET get " + oids::row(oids::alarmStatesState, 99) + " noSuchInstance - genErr"}},
        {"AGetNext",
         [=](Manager &manager) { manager.getNext(oids::registered::timeoutPan); },
         {"GETNEXT getnext " + timeout + " Integer32 -1 noError"}},
        {"AGetBulk",
         [=](Manager &manager) { manager.getBulk(0, 2, {oids::alarmStatesState}); },
         {"GETBULK getnext " + input + " Integer32 0 noError",
          "GETBULK getnext " + oids::row(oids::alarmStatesState, 2) + " Integer32 0 noError"}},
        {"AnAcceptedSet",
         [=](Manager &manager) { manager.set({octetString(pan, "\x02\x7F\x50\x46"s)}); },
         {"SET commit " + pan + " OctetString 027F5046 noError"}},
        {"ARefusedSet",
         [=](Manager &manager) { manager.set({octetString(pan, "\x04\x7F"s)}); },
         {"SET reserve2 " + pan + " OctetString 047F wrongValue"}},
        {"ASetOfAnotherType",
         [=](Manager &manager) { manager.set({integer(pan, 5)}); },
         {"SET reserve1 " + pan + " Integer32 5 wrongType"}},
        {"ASetWithABadSecondVarbind",
         [=](Manager &manager) {
             manager.set({octetString(tilt, "\x02\x7F\x64\x00"s), octetString(pan, "\x04"s)});
         },
         {"SET reserve2 " + pan + " OctetString 04 wrongValue", "SET undo " + tilt + " OctetString 027F6400 undone"}},
        {"ASetOfTwo",
         [=](Manager &manager) {
             manager.set({integer(timeout, 0), integer(oids::timeoutTilt, 0)});
         },
         {"SET commit " + timeout + " Integer32 0 noError",
          "SET commit "s + oids::timeoutTilt + " Integer32 0 noError"}},
    };
}

std::string rowName(const testing::TestParamInfo<Reported> &row) {
    return row.param.name;
}

class WatchReports : public WatchTest, public testing::WithParamInterface<Reported> {};

TEST_P(WatchReports, AreThoseOf) {
    GetParam().request(manager_);
    std::vector<std::string> lines;
    for (const json &report : receiver_.take()) {
        lines.push_back(line(report));
    }
    EXPECT_EQ(lines, GetParam().reports);
}

INSTANTIATE_TEST_SUITE_P(Request, WatchReports, testing::ValuesIn(requests()), rowName);

} // namespace

TEST(WatchObservation, IsOneLineOfJsonWhateverItContains) {
    watch::Observation observation;
    observation.principal = "\xFF\n\"";
    observation.octets = std::string(2000, '\x01');
    const std::string text = watch::observationText(observation, 3);
    EXPECT_EQ(text.find('\n'), std::string::npos);
    EXPECT_LT(text.size(), 4096U);
    const json report = json::parse(text);
    EXPECT_EQ(report.at("as"), "\xEF\xBF\xBD\n\"");
    EXPECT_EQ(report.at("octets").get<std::string>().size(), 2 * watch::kReportedOctets);
    EXPECT_EQ(report.at("cut"), true);
    EXPECT_EQ(report.at("lost"), 3);
}

TEST_F(WatchTest, WhoAsksIsReported) {
    Manager(agent_.peer(), "public").get(oids::timeoutPan);
    EXPECT_THAT(only({"version", "as"}), ElementsAre("2c", "public"));
    Manager(agent_.peer(), "private", CommunityVersion::V1).get(oids::timeoutPan);
    const std::vector<json> reports = receiver_.take();
    ASSERT_EQ(reports.size(), 1U);
    EXPECT_EQ(reports[0].at("version"), "1");
    EXPECT_THAT(reports[0].at("sender").get<std::string>(), testing::MatchesRegex("127\\.0\\.0\\.1:[0-9]+"));
    const std::chrono::microseconds now =
        std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::system_clock::now().time_since_epoch());
    EXPECT_LE(reports[0].at("timeUs").get<long long>(), now.count());
    EXPECT_GT(reports[0].at("timeUs").get<long long>(), now.count() - 60'000'000);
    EXPECT_GE(reports[0].at("durationUs").get<long long>(), 0);
}

TEST(WatchUser, IsReported) {
    const Camera camera("dome");
    Receiver receiver(camera);
    const User user{"operator", "authenticate me", "encrypt me, too"};
    AgentOptions options = watched(camera, false);
    options.configuration.insert(options.configuration.end(), {creationOf(user), "rouser operator priv -V readable"});
    Agent agent(options);
    receiver.take();
    Manager manager(agent.peer(), user);
    ASSERT_TRUE(manager.get(oids::timeoutPan).ok());
    const std::vector<json> reports = receiver.take();
    ASSERT_EQ(reports.size(), 1U);
    EXPECT_EQ(reports[0].at("version"), "3");
    EXPECT_EQ(reports[0].at("as"), "operator");
}

TEST_F(WatchTest, ASlowServiceShowsInTheDuration) {
    ASSERT_TRUE(camera_.control({"delay", "alarm", "get_state_send", "300"}).status.clean());
    manager_.get(oids::row(oids::alarmStatesState, 1));
    const std::vector<json> reports = receiver_.take();
    ASSERT_EQ(reports.size(), 1U);
    EXPECT_GE(reports[0].at("durationUs").get<long long>(), 300'000);
}

TEST(WatchWalk, IsTheSameWithAndWithout) {
    const Camera camera("dome");
    Agent plain(withModule(camera.directory()));
    const Receiver receiver(camera);
    Agent observed(watched(camera, false));
    for (const char *root : {oids::kNtcipSubtree, oids::kVendorSubtree}) {
        const std::vector<Varbind> expected = Manager(plain.peer()).walk(root);
        EXPECT_FALSE(expected.empty());
        EXPECT_EQ(Manager(observed.peer()).walk(root), expected);
        EXPECT_EQ(Manager(observed.peer()).bulkWalk(root), expected);
    }
}

TEST_F(WatchTest, EachObjectOfAWalkIsReportedOnce) {
    std::vector<std::string> walked;
    for (const Varbind &varbind : manager_.walk(oids::kVendorSubtree)) {
        walked.push_back(withoutDot(varbind.oid));
    }
    std::vector<std::string> reported;
    for (const json &report : receiver_.take(walked.size())) {
        reported.push_back(report.at("oid"));
    }
    EXPECT_EQ(reported, walked);
}

// The camera's module registers its objects after this one, too: at its own reload, and with this order of lines.
TEST_F(WatchFirstTest, ObjectsThatAreRegisteredLaterAreReported) {
    manager_.get(oids::timeoutPan);
    EXPECT_THAT(only({"oid", "outcome"}), ElementsAre(withoutDot(oids::timeoutPan), "noError"));
    manager_.get(oids::row(oids::alarmStatesState, 1));
    EXPECT_THAT(only({"outcome"}), ElementsAre("noError"));
}

TEST_F(WatchTest, AReloadKeepsReports) {
    for (int i = 0; i < 5; ++i) {
        agent_.hup();
        receiver_.take();
        ASSERT_TRUE(manager_.get(oids::timeoutPan).ok()) << i;
        EXPECT_THAT(only({"outcome"}), ElementsAre("noError"));
    }
}

// The agent keeps more reports than the kernel does, but not any number.
TEST_F(WatchTest, AReceiverThatDoesNotReadLosesReportsAndLearnsHowMany) {
    std::size_t sent = 0;
    for (; sent < 1500; ++sent) {
        ASSERT_TRUE(manager_.get(oids::timeoutPan).ok()) << sent;
    }
    std::size_t delivered = 0;
    std::size_t lost = 0;
    EXPECT_TRUE(eventually([&] {
        for (const json &report : receiver_.take()) {
            ++delivered;
            lost += report.value("lost", std::size_t{0});
        }
        // The next report says how many were lost before it.
        sent += delivered + lost < sent && manager_.get(oids::timeoutPan).ok() ? 1U : 0U;
        return delivered + lost == sent;
    })) << delivered
        << " delivered, " << lost << " lost, " << sent << " sent";
    EXPECT_GT(delivered, 0U);
    EXPECT_GT(lost, 0U);
}

TEST(WatchReceiver, IsNotNeeded) {
    const Camera camera("dome");
    Agent agent(watched(camera, false));
    Manager manager(agent.peer());
    EXPECT_TRUE(manager.get(oids::timeoutPan).ok());
    EXPECT_TRUE(manager.set({octetString(oids::positionPan, absolute(64, 100))}).ok());
    Receiver receiver(camera);
    EXPECT_TRUE(manager.get(oids::timeoutPan).ok());
    EXPECT_EQ(receiver.take().size(), 1U);
}

TEST(WatchDirectory, ThatOthersCanWriteGetsNoReports) {
    const Camera camera("dome");
    Receiver receiver(camera);
    ASSERT_EQ(chmod(camera.directory().c_str(), 0777), 0);
    AgentOptions options = withModule(camera.directory());
    options.module = watchModulePath();
    options.moduleName = "quarnsnmp_watch";
    const Agent agent(options);
    EXPECT_EQ(agent.log().count("requests are not reported: " + camera.directory() + " is writable by other users"),
              1U);
    ASSERT_EQ(chmod(camera.directory().c_str(), 0700), 0);
}

// Both modules, unloaded in both orders and loaded again.
TEST(WatchLifecycle, UnloadingLeavesTheAgentAsBefore) {
    constexpr const char *names = ".1.3.6.1.4.1.2021.13.14.2.1.2";
    constexpr const char *statuses = ".1.3.6.1.4.1.2021.13.14.2.1.5";
    constexpr std::int64_t load = 4;
    constexpr std::int64_t unload = 5;
    const Camera camera("dome");
    Receiver receiver(camera);
    AgentOptions options = watched(camera, false);
    options.showModules = true;
    Agent agent(options);
    Manager manager(agent.peer());
    std::map<std::string, std::string> status;
    for (const Varbind &name : manager.walk(names)) {
        status[name.octets] = statuses + name.oid.substr(name.oid.rfind('.'));
    }
    const std::string camerasOwn = status.at("quarnsnmp");
    const std::string watch = status.at("quarnsnmp_watch");
    const std::vector<Varbind> before = manager.walk(oids::kVendorSubtree);
    for (int i = 0; i < 20; ++i) {
        ASSERT_TRUE(manager.set(watch, Type::Integer, unload).ok()) << i;
        EXPECT_FALSE(mapsFile(agent.pid(), watchModulePath()));
        receiver.take();
        EXPECT_EQ(manager.walk(oids::kVendorSubtree), before) << i;
        EXPECT_THAT(receiver.take(), IsEmpty());
        if (i % 2 == 0) {
            ASSERT_TRUE(manager.set(camerasOwn, Type::Integer, unload).ok()) << i;
            ASSERT_TRUE(manager.set(watch, Type::Integer, load).ok()) << i;
            ASSERT_TRUE(manager.set(camerasOwn, Type::Integer, load).ok()) << i;
        } else {
            ASSERT_TRUE(manager.set(watch, Type::Integer, load).ok()) << i;
            ASSERT_TRUE(manager.set(camerasOwn, Type::Integer, unload).ok()) << i;
            ASSERT_TRUE(manager.set(camerasOwn, Type::Integer, load).ok()) << i;
        }
        receiver.take();
        EXPECT_TRUE(manager.get(oids::timeoutPan).ok());
        EXPECT_EQ(receiver.take().size(), 1U) << i;
    }
    EXPECT_TRUE(agent.running());
}

TEST(WatchLifecycle, ReloadsCostNothing) {
    const Camera camera("dome");
    const Receiver receiver(camera);
    Agent agent(watched(camera, false));
    Agent plain(withModule(camera.directory()));
    const auto growth = [](Agent &reloaded) {
        for (int i = 0; i < 20; ++i) {
            reloaded.hup();
        }
        const Footprint before = footprint(reloaded);
        for (int i = 0; i < 50; ++i) {
            reloaded.hup();
        }
        const Footprint after = footprint(reloaded);
        EXPECT_TRUE(hasNoMoreThan(before, reloaded)) << before << ", then " << after;
        return after.kilobytes - std::min(before.kilobytes, after.kilobytes);
    };
    const std::size_t own = growth(plain);
    const std::size_t both = growth(agent);
    if (memoryTells()) {
        EXPECT_LE(both, own + kSlackKilobytes);
    }
}
