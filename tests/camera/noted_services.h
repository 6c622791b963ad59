// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Services without sockets for tests of what switches them.
 */
#ifndef QUARNSNMP_TEST_NOTED_SERVICES_H
#define QUARNSNMP_TEST_NOTED_SERVICES_H

#include <set>

#include "service_switch.h"

namespace camera::test {

/** Notes which services are down, and can be told to fail. */
class NotedServices : public ServiceSwitch {
public:
    bool isUp(const std::string &service) const override {
        return down.count(service) == 0;
    }
    void takeDown(const std::string &service) override {
        down.insert(service);
    }
    std::optional<std::string> bringUp(const std::string &service) override {
        if (!broken) {
            down.erase(service);
        }
        return broken;
    }

    std::set<std::string> down;
    std::optional<std::string> broken;
};

} // namespace camera::test

#endif
