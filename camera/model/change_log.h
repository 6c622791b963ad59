// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Collection of the effects of a command, for their publication as events.
 */
#ifndef QUARNSNMP_CAMERA_CHANGE_LOG_H
#define QUARNSNMP_CAMERA_CHANGE_LOG_H

#include <string>
#include <vector>

#include "events.h"
#include "service.h"

namespace camera {

/** Returns the ID of a target, `service/number`. */
std::string targetId(const std::string &service, std::size_t index);

/**
 * Log of the fields that a command changes, and of the reports of targets. publish() turns both into events: first the
 * event `changed` of each target, then the reports in the order of their times.
 */
class ChangeLog {
public:
    /** Records the changes of targets during its lifetime, if the events have a listener. */
    class Recording {
    public:
        explicit Recording(ChangeLog &log, bool enabled = true);
        Recording(const Recording &) = delete;
        Recording &operator=(const Recording &) = delete;
        ~Recording();

    private:
        ChangeLog &log_;
    };

    /** @param events  must outlive the log */
    explicit ChangeLog(Events &events) : events_(events) {}

    /** Remembers the present fields of a target during a recording. The service must outlive the next publish(). */
    void remember(const Service &service, std::size_t index);

    /** Adds a report of a target. @param time  in seconds since the camera started */
    void report(const std::string &target, double time, const char *kind, nlohmann::json members);

    /** Publishes and forgets all entries. @param now  time of the changes */
    void publish(double now);

private:
    struct Report {
        double time;
        const char *kind;
        nlohmann::json members;
    };
    struct Snapshot {
        const Service *service;
        std::size_t index;
        nlohmann::json values;
    };

    void publishChanges(double now);
    void publishReports();

    Events &events_;
    bool recording_ = false;
    std::vector<Snapshot> snapshots_;
    std::vector<Report> reports_;
};

} // namespace camera

#endif
