// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Test double of service control.
 */
#ifndef QUARNSNMP_TEST_FAKE_SERVICE_CONTROL_H
#define QUARNSNMP_TEST_FAKE_SERVICE_CONTROL_H

#include <set>

#include "service_control.h"

namespace camera::test {

/** Services that record their state, with an optional failure of bringUp(). */
class FakeServiceControl : public ServiceControl {
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
