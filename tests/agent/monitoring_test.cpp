// SPDX-License-Identifier: Apache-2.0
// A camera in Prometheus: the shipped modules in the exporter, and the shipped agent configurations.
#include <optional>
#include <regex>
#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "configured_agent.h"
#include "metrics_exporter.h"

namespace {

using namespace configured_agent;
using namespace harness;
using monitoring::cameraValues;
using monitoring::Exporter;
using monitoring::Scrape;
using monitoring::shippedText;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Key;
using testing::Pair;
using testing::StartsWith;

constexpr const char *kLab = "quarnsnmp_lab";
constexpr const char *kField = "quarnsnmp_field";
constexpr const char *kTemperature = "quarnsnmp_temperature_raw_celsius";
constexpr int kOk = 200;
constexpr int kInternalServerError = 500;

/** User of the shipped module for the field, with the passphrases of the shipped agent configuration. */
const User kShippedViewer = {"viewer", "passphrase of viewer", "another passphrase"};

/** Address of a missing trap receiver. */
struct Nobody {
    ReservedPort port;
    std::string peer = "127.0.0.1:" + std::to_string(port.number());
};

AgentOptions agentOfShippedViewer(const std::string &traps) {
    AgentOptions options = fieldAgent(traps);
    options.persistentData = {creationOf(kShippedViewer), creationOf(kNotifier)};
    options.asker = kShippedViewer;
    return options;
}

/** Tests that a machine without the exporter skips. */
class WithExporter : public CameraAgent {
protected:
    using CameraAgent::CameraAgent;

    void SetUp() override {
        if (!Exporter::installed()) {
            GTEST_SKIP() << "prometheus-snmp-exporter is missing; on Debian, install the package of this name";
        }
    }
};

class Monitoring : private Nobody, public WithExporter {
protected:
    explicit Monitoring(const std::string &camera) : WithExporter(camera, labAgent(peer)) {}

    void SetUp() override {
        WithExporter::SetUp();
        if (!IsSkipped()) {
            exporter_.emplace();
        }
    }

    Scrape scrape() const {
        return exporter_->scrape(kLab, agent_.peer());
    }

    /** Reads the values of the camera, which must succeed. */
    std::map<std::string, double> values() const {
        const Scrape result = scrape();
        EXPECT_EQ(result.status, kOk) << result.body;
        return cameraValues(result);
    }

    std::optional<Exporter> exporter_;
};

class MonitoringOfDome : public Monitoring {
protected:
    MonitoringOfDome() : Monitoring("dome") {}
};

class MonitoringOfMinimal : public Monitoring {
protected:
    MonitoringOfMinimal() : Monitoring("minimal") {}
};

class MonitoringInTheField : private Nobody, public WithExporter {
protected:
    MonitoringInTheField() : WithExporter("dome", agentOfShippedViewer(peer)) {}
};

/** The dome as it is delivered, with further values. */
std::map<std::string, double> domeWith(const std::map<std::string, double> &others) {
    std::map<std::string, double> result{
        {"quarnsnmp_info{firmware=\"2.4.1-20260312\",hardware=\"B3\",model=\"QN-4000 Dome\",serial=\"QN4000004711\"}",
         1},
        {"quarnsnmp_lens_automatic{quarnsnmp_lens_automatic=\"focus\"}", 1},
        {"quarnsnmp_lens_automatic{quarnsnmp_lens_automatic=\"iris\"}", 1},
        {"quarnsnmp_power_state", 0},
        {kTemperature, 31},
        {"quarnsnmp_voltage_state", 0},
    };
    const std::vector<std::pair<const char *, int>> tables{{"alarm_input", 4}, {"relay", 2}};
    for (const auto &[table, rows] : tables) {
        for (int row = 0; row < rows; ++row) {
            result["quarnsnmp_" + std::string(table) + "_state{kind=\"GPIO\",number=\"" + std::to_string(row) + "\"}"] =
                0;
        }
    }
    for (const auto &[series, value] : others) {
        result[series] = value;
    }
    return result;
}

/** All that an expression's first group finds in a text. */
std::set<std::string> found(const std::string &text, const std::string &expression) {
    const std::regex regex(expression);
    std::set<std::string> result;
    for (auto each = std::sregex_iterator(text.begin(), text.end(), regex); each != std::sregex_iterator(); ++each) {
        result.insert((*each)[1]);
    }
    return result;
}

} // namespace

TEST(MonitoringDocument, HasEveryMetricAndEveryAlert) {
    const std::string document = shippedText("../docs/monitoring.md");
    const std::set<std::string> metrics = found(shippedText("snmp_quarnsnmp.yml"), "- name: ([A-Za-z_]+)");
    EXPECT_THAT(metrics, Contains("quarnsnmp_info"));
    for (const std::string &metric : metrics) {
        EXPECT_THAT(document, HasSubstr("`" + metric + "`"));
    }
    const std::set<std::string> alerts = found(shippedText("quarnsnmp.rules.yml"), "- alert: (\\w+)");
    EXPECT_THAT(alerts, Contains("QuarnsnmpCameraGone"));
    EXPECT_EQ(found(document, "\\| `(Quarnsnmp[A-Za-z]+)` \\|"), alerts);
}

TEST_F(MonitoringOfDome, HasTheValuesOfTheCamera) {
    EXPECT_EQ(values(), domeWith({}));
    setField(camera_, "temperature/1", "temperature", 45999);
    setField(camera_, "power/1", "powerState", 2);
    setField(camera_, "power/1", "voltageState", 3);
    setField(camera_, "alarm/3", "state", 1);
    setField(camera_, "relay/2", "state", 1);
    setField(camera_, "exposure/1", "manualMode", true);
    EXPECT_EQ(values(), domeWith({
                            {kTemperature, 45},
                            {"quarnsnmp_power_state", 2},
                            {"quarnsnmp_voltage_state", 3},
                            {"quarnsnmp_alarm_input_state{kind=\"GPIO\",number=\"2\"}", 1},
                            {"quarnsnmp_relay_state{kind=\"GPIO\",number=\"1\"}", 1},
                            {"quarnsnmp_lens_automatic{quarnsnmp_lens_automatic=\"iris\"}", 0},
                        }));
    setField(camera_, "temperature/1", "temperature", -1500);
    EXPECT_THAT(values(), Contains(Pair(kTemperature, 4294967295.0))) << "the value below zero of the rules";
}

TEST_F(MonitoringOfDome, AServiceThatIsDownTakesAwayItsOwnValuesOnly) {
    for (const char *service : {"temperature", "power", "alarm", "relay"}) {
        control("down", service);
        std::map<std::string, double> expected = domeWith({});
        for (auto each = expected.begin(); each != expected.end();) {
            const bool gone = each->first.rfind("quarnsnmp_" + std::string(service), 0) == 0 ||
                              (std::string(service) == "power" && each->first == "quarnsnmp_voltage_state");
            each = gone ? expected.erase(each) : std::next(each);
        }
        EXPECT_EQ(values(), expected) << service;
        control("up", service);
        EXPECT_EQ(values(), domeWith({})) << service;
    }
}

// Two calls are behind the lens's object, and each takes two seconds to fail.
TEST_F(MonitoringOfDome, TheExporterWaitsForTheSlowestObject) {
    control("delay", "lens_focus", "*", "60000", "--always");
    control("delay", "exposure", "*", "60000", "--always");
    EXPECT_EQ(values(), domeWith({
                            {"quarnsnmp_lens_automatic{quarnsnmp_lens_automatic=\"focus\"}", 0},
                            {"quarnsnmp_lens_automatic{quarnsnmp_lens_automatic=\"iris\"}", 0},
                        }));
    control("clear");
}

TEST_F(MonitoringOfDome, HasEverySeriesThatTheRulesAreTestedWithAndSendsNoCommand) {
    const CameraEvents events(camera_);
    std::set<std::string> needed = found(shippedText("quarnsnmp.rules_test.yml"), "series: '?([A-Za-z_]+)");
    EXPECT_EQ(needed.erase("up"), 1U) << "Prometheus makes it itself";
    EXPECT_THAT(needed, Contains("sysUpTime"));
    const Scrape result = scrape();
    for (const std::string &metric : needed) {
        EXPECT_THAT(result.body, HasSubstr("# TYPE " + metric + " gauge\n"));
    }
    EXPECT_THAT(finishedOperations(events), IsEmpty());
}

TEST_F(MonitoringOfDome, AnAgentThatIsGoneIsAnErrorAndComesBack) {
    EXPECT_EQ(scrape().status, kOk);
    agent_.stop();
    const Scrape gone = scrape();
    EXPECT_EQ(gone.status, kInternalServerError) << gone.body;
    EXPECT_THAT(gone.body, HasSubstr("error getting target 127.0.0.1"));
    agent_.start();
    EXPECT_EQ(values(), domeWith({}));
}

TEST_F(MonitoringOfMinimal, HasWhatTheCameraHas) {
    const Scrape result = scrape();
    EXPECT_THAT(cameraValues(result),
                ElementsAre(Pair("quarnsnmp_info{firmware=\"1.0.3-20251104\",hardware=\"A\",model=\"QN-100 Minimal\","
                                 "serial=\"QN1000000217\"}",
                                 1)));
    EXPECT_THAT(result.values, Contains(Key("sysUpTime")));
}

TEST_F(MonitoringInTheField, TheViewerAloneReadsWhatThereIsInALab) {
    const Exporter exporter;
    const Scrape result = exporter.scrape(kField, agent_.peer());
    EXPECT_EQ(result.status, kOk) << result.body;
    EXPECT_EQ(cameraValues(result), domeWith({}));
    EXPECT_THAT(result.values, Contains(Key("sysUpTime")));
    // A wrong passphrase and a community read nothing.
    const std::string shipped = shippedText("snmp_quarnsnmp.yml");
    const std::string passphrase = "password: " + kShippedViewer.authentication;
    std::string wrong = shipped;
    ASSERT_NE(wrong.find(passphrase), std::string::npos);
    wrong.insert(wrong.find(passphrase) + passphrase.size(), "s");
    EXPECT_EQ(Exporter(wrong).scrape(kField, agent_.peer()).status, kInternalServerError);
    // As patient as shipped, this would be ten seconds of silence.
    const std::string impatient = std::regex_replace(shipped, std::regex("timeout: 5s"), "timeout: 1s");
    EXPECT_EQ(Exporter(impatient).scrape(kLab, agent_.peer()).status, kInternalServerError);
    EXPECT_EQ(Exporter(impatient).scrape(kField, agent_.peer()).status, kOk);
}
