// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Functions of all services. They differ only in their names and the types of their arguments, so all of them are
 * instances of one template.
 */
#include <array>

#include "boundary.h"
#include "library.h"
#include "request_line.h"
#include "response.h"
#include "status.h"

namespace standin {

namespace {

/** Request of a call and the destinations of its results. */
class Exchange {
public:
    Exchange(const char *operation, const char *target) : request_(operation), isValid_(target != nullptr) {
        request_.add(target);
    }

    template <typename Input>
    void add(Input input) {
        request_.add(input);
    }
    void add(std::int32_t *output) {
        addOutput(output);
    }
    void add(std::uint32_t *output) {
        addOutput(output);
    }
    void add(std::uint8_t *output) {
        addOutput(output);
    }
    void add(char **output) {
        addOutput(output);
    }

    zorva_core_status perform(Channel &channel, const Deadline &deadline) {
        const std::string_view line = isValid_ ? request_.finish() : std::string_view();
        if (line.empty()) {
            return wire::kInvalidArgument;
        }
        return channel.exchange(line, deadline, [this](std::string_view response) {
            return readResponse(response, outputs_.data(), outputCount_);
        });
    }

private:
    template <typename Result>
    void addOutput(Result *output) {
        isValid_ = isValid_ && output != nullptr;
        outputs_[outputCount_++] = output;
    }

    RequestLine request_;
    std::array<Output, kMaximumOutputs> outputs_;
    std::size_t outputCount_ = 0;
    bool isValid_;
};

template <typename... Arguments>
zorva_core_status call(Service service, const char *operation, void *cookie, const char *target,
                       Arguments... arguments) noexcept {
    static_assert(sizeof...(arguments) <= kMaximumOutputs);
    return guarded([&] {
        const Deadline deadline(kCallLimit);
        std::shared_ptr<Channel> channel;
        const zorva_core_status status = library().findService(service, cookie, channel);
        if (status != wire::kSuccess) {
            return status;
        }
        Exchange exchange(operation, target);
        (exchange.add(arguments), ...);
        return exchange.perform(*channel, deadline);
    });
}

zorva_core_status openService(Service service, void *ipcCookie, void *logCookie, void **apiCookie, int32_t reserved0,
                              const void *reserved1) noexcept {
    if (apiCookie == nullptr) {
        return wire::kInvalidArgument;
    }
    *apiCookie = nullptr;
    if (reserved0 != 0 || reserved1 != nullptr) {
        return wire::kInvalidArgument;
    }
    return guarded([&] { return library().openService(service, ipcCookie, logCookie, apiCookie); });
}

zorva_core_status closeService(Service service, void *apiCookie) noexcept {
    return guarded([&] { return library().closeService(service, apiCookie); });
}

} // namespace

} // namespace standin

#define ZORVA_SERVICE(service)                                                                                         \
    extern "C" zorva_core_status zorva_api_##service##_initiator_init(                                                 \
        void *ipcCookie, void *logCookie, void **apiCookie, int32_t reserved0, void *reserved1) {                      \
        return standin::openService(standin::Service::service, ipcCookie, logCookie, apiCookie, reserved0, reserved1); \
    }                                                                                                                  \
    extern "C" zorva_core_status zorva_api_##service##_initiator_deinit(void *apiCookie) {                             \
        return standin::closeService(standin::Service::service, apiCookie);                                            \
    }
#define ZORVA_CALL(service, operation, parameters, ...)                                                                \
    extern "C" zorva_core_status zorva_api_##service##_##operation parameters {                                        \
        return standin::call(standin::Service::service, #operation, __VA_ARGS__);                                      \
    }
#include "service_calls.def"
