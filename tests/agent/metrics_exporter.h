// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The program that reads a camera for Prometheus, with the modules that the project ships.
 */
#ifndef QUARNSNMP_METRICS_EXPORTER_H
#define QUARNSNMP_METRICS_EXPORTER_H

#include <map>
#include <string>

#include "process.h"
#include "temporary_directory.h"

namespace monitoring {

/** The program's answer to a request to read a camera. */
struct Scrape {
    int status = 0;                       ///< of HTTP: 200, or 500 when the camera could not be read
    std::string body;                     ///< the metrics, or the reason for their absence
    std::map<std::string, double> values; ///< by the metric with its labels, as in the body; empty without metrics
};

/** Returns the values of a camera, without sysUpTime and the exporter's own values. */
std::map<std::string, double> cameraValues(const Scrape &scrape);

/** Returns the text of a file in monitoring/. @throws std::runtime_error if it does not exist */
std::string shippedText(const std::string &name);

/** A running exporter on a free port of the loopback interface. What Process says about threads holds here too. */
class Exporter {
public:
    /** Returns true if this machine has the program. */
    static bool installed();

    /**
     * Starts an exporter and waits until it listens.
     * @param modules  text of its configuration
     * @throws std::runtime_error if it does not listen; the text has its output
     */
    explicit Exporter(const std::string &modules = shippedText("snmp_quarnsnmp.yml"));

    /**
     * Requests the metrics of a camera.
     * @param module  name of a module of the configuration
     * @param peer    address of the camera's agent, as HOST:PORT
     * @throws std::runtime_error when it does not answer, or something that is not HTTP
     */
    Scrape scrape(const std::string &module, const std::string &peer) const;

private:
    std::string port() const;

    support::TemporaryDirectory directory_;
    support::Process process_;
};

} // namespace monitoring

#endif
