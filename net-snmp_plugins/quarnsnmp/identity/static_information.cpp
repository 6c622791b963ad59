// SPDX-License-Identifier: Apache-2.0
#include "static_information.h"

#include <array>
#include <cstdlib>

#include "core_utils.h"
#include "service.h"
#include "service_calls.h"

namespace {

/** The eight texts of the service, allocated with malloc(). Any of them may be null. */
struct ServiceTexts {
    std::array<char *, 8> texts{};

    ServiceTexts() = default;
    ServiceTexts(const ServiceTexts &) = delete;
    ServiceTexts &operator=(const ServiceTexts &) = delete;
    ~ServiceTexts() {
        for (char *text : texts) {
            free(text);
        }
    }

    std::string at(std::size_t position) const {
        const char *text = texts.at(position);
        return text != nullptr ? text : "";
    }
};

bool QueryService(const char *function, void *apiCookie, const std::string &target, StaticInformation &information) {
    ServiceTexts texts;
    auto &t = texts.texts;
    uint8_t flag = 0;
    if (watched::zorva_api_device_information_get_static_information_send(
            apiCookie, target.c_str(), &t[0], &t[1], &t[2], &t[3], &t[4], &t[5], &t[6], &t[7], &flag) != 0) {
        zorva_core_logging_log(GetLogCookie(), kLogError, "%s: failed dev info:get_static_information", function);
        return false;
    }
    // No object shows the last four texts and the flag.
    information = {texts.at(0), texts.at(1), texts.at(2), texts.at(3)};
    return true;
}

} // namespace

bool ReadStaticInformation(const char *function, void *ipcCookie, StaticInformation &information) {
    std::vector<std::string> targets;
    void *apiCookie = nullptr;
    const Service service = {"device_information",
                             "no zorva API dev info",
                             "dev info",
                             targets,
                             apiCookie,
                             zorva_api_device_information_initiator_init};
    FindTargets(service);
    if (!OpenService(function, ipcCookie, service)) {
        return false;
    }
    const bool read = QueryService(function, apiCookie, targets[kDefaultIndex], information);
    zorva_api_device_information_initiator_deinit(apiCookie);
    return read;
}
