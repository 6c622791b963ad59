// SPDX-License-Identifier: Apache-2.0
#include "metrics_exporter.h"

#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>

#include <boost/asio/ip/tcp.hpp>

#include "eventually.h"
#include "log_file.h"

namespace monitoring {

using std::chrono::seconds;
using support::LogFile;

namespace {

constexpr const char *kProgram = "prometheus-snmp-exporter";
constexpr const char *kListening = "msg=\"Listening on\" address=127.0.0.1:";

/** The lines that are samples, `metric{labels} value`, apart at their last blank. */
std::map<std::string, double> samples(const std::string &body) {
    std::map<std::string, double> result;
    std::istringstream lines(body);
    for (std::string line; std::getline(lines, line);) {
        const std::size_t blank = line.rfind(' ');
        if (line.empty() || line.front() == '#' || blank == std::string::npos) {
            continue;
        }
        result[line.substr(0, blank)] = std::stod(line.substr(blank + 1));
    }
    return result;
}

} // namespace

std::map<std::string, double> cameraValues(const Scrape &scrape) {
    std::map<std::string, double> result;
    for (const auto &[series, value] : scrape.values) {
        if (series.rfind("quarnsnmp_", 0) == 0) {
            result[series] = value;
        }
    }
    return result;
}

std::string shippedText(const std::string &name) {
    std::ifstream file(MONITORING_DIRECTORY "/" + name);
    if (!file) {
        throw std::runtime_error("cannot read " + name + " in " MONITORING_DIRECTORY);
    }
    return {std::istreambuf_iterator<char>(file), {}};
}

bool Exporter::installed() {
    return support::programPath(kProgram) != kProgram;
}

Exporter::Exporter(const std::string &modules)
    : process_(
          {{kProgram, "--config.file=" + directory_.write("snmp.yml", modules), "--web.listen-address=127.0.0.1:0"},
           {},
           "/dev/null",
           directory_.file("log")}) {
    const LogFile log(directory_.file("log"));
    support::eventually(seconds(20), [&] { return log.count(kListening) > 0 || !process_.running(); });
    if (log.count(kListening) == 0) {
        throw std::runtime_error(std::string(kProgram) + " does not start\n" + log.text());
    }
}

std::string Exporter::port() const {
    const std::string text = LogFile(directory_.file("log")).text();
    const std::size_t start = text.find(kListening) + std::string(kListening).size();
    return text.substr(start, text.find('\n', start) - start);
}

Scrape Exporter::scrape(const std::string &module, const std::string &peer) const {
    boost::asio::ip::tcp::iostream connection;
    connection.expires_after(support::patient(seconds(60)));
    connection.connect("127.0.0.1", port());
    // Version 1.0, so that the answer comes in one piece and ends with the connection.
    connection << "GET /snmp?module=" << module << "&target=" << peer << " HTTP/1.0\r\n\r\n" << std::flush;
    const std::string answer{std::istreambuf_iterator<char>(connection), {}};
    const std::string version = "HTTP/1.0 ";
    const std::size_t headEnd = answer.find("\r\n\r\n");
    if (answer.rfind(version, 0) != 0 || headEnd == std::string::npos) {
        throw std::runtime_error(std::string(kProgram) + " answers: '" + answer + "'");
    }
    Scrape result;
    result.status = std::stoi(answer.substr(version.size()));
    result.body = answer.substr(headEnd + 4);
    if (result.status == 200) {
        result.values = samples(result.body);
    }
    return result;
}

} // namespace monitoring
