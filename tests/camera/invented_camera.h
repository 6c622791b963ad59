// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Camera with invented services, for tests that are independent of the real ones.
 */
#ifndef QUARNSNMP_TEST_INVENTED_CAMERA_H
#define QUARNSNMP_TEST_INVENTED_CAMERA_H

#include "camera_model.h"

namespace camera::test {

/** Target of the service "gadget". */
struct Gadget {
    Text label;
    std::int32_t highest = 9;
    std::int32_t level = 0;

    static const Definition<Gadget> &definition() {
        static const Definition<Gadget> definition = {
            "gadget",
            {nullableTextField("label", &Gadget::label), integerField("highest", &Gadget::highest, 0, 99),
             integerField("level", &Gadget::level)},
            {operation(
                "set_level_send",
                +[](const Scope<Gadget> &scope, std::int32_t wanted) {
                    scope.state.level = wanted;
                    return Answer{};
                })},
            [](const Gadget &state) { return checkWithin("level", state.level, 0, state.highest, "0 to highest"); }};
        return definition;
    }
};

/** Target of the service "gizmo". */
struct Gizmo {
    std::uint8_t count = 0;

    static const Definition<Gizmo> &definition() {
        static const Definition<Gizmo> definition = {"gizmo", {integerField("count", &Gizmo::count)}, {}};
        return definition;
    }
};

/** Makes a camera with the targets gadget/1 and gizmo/1. */
inline std::unique_ptr<CameraModel> inventedCamera() {
    Services services;
    services.emplace("gadget", std::make_unique<ServiceOf<Gadget>>());
    services.emplace("gizmo", std::make_unique<ServiceOf<Gizmo>>());
    for (const auto &entry : services) {
        entry.second->addTarget(nlohmann::json::object());
    }
    return std::make_unique<CameraModel>("invented", "Camera of tests", std::move(services), [] { return 1.5; });
}

} // namespace camera::test

#endif
