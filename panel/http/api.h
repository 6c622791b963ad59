// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Paths of the server.
 */
#ifndef QUARNSNMP_PANEL_API_H
#define QUARNSNMP_PANEL_API_H

#include <memory>
#include <vector>

#include "camera_panel.h"
#include "server.h"

namespace panel {

/** Answers requests about some cameras. */
class Api {
public:
    explicit Api(std::vector<std::shared_ptr<CameraPanel>> cameras);

    /** Answers a request that has passed the checks of the server. */
    void handle(const Request &request, const std::shared_ptr<Exchange> &exchange) const;

private:
    using Handler = void (Api::*)(CameraPanel &camera, const Request &request,
                                  const std::shared_ptr<Exchange> &exchange) const;
    struct Route {
        const char *path;
        const char *method; ///< GET stands for HEAD, too
        Handler handler;
    };

    static const std::vector<Route> &routes();

    void snapshot(CameraPanel &camera, const Request &request, const std::shared_ptr<Exchange> &exchange) const;
    void video(CameraPanel &camera, const Request &request, const std::shared_ptr<Exchange> &exchange) const;
    void events(CameraPanel &camera, const Request &request, const std::shared_ptr<Exchange> &exchange) const;
    void list(CameraPanel &camera, const Request &request, const std::shared_ptr<Exchange> &exchange) const;
    void log(CameraPanel &camera, const Request &request, const std::shared_ptr<Exchange> &exchange) const;
    void scenarios(CameraPanel &camera, const Request &request, const std::shared_ptr<Exchange> &exchange) const;
    void act(CameraPanel &camera, const Request &request, const std::shared_ptr<Exchange> &exchange) const;
    void control(CameraPanel &camera, const Request &request, const std::shared_ptr<Exchange> &exchange) const;
    void playScenario(CameraPanel &camera, const Request &request, const std::shared_ptr<Exchange> &exchange) const;

    CameraPanel *cameraOf(const Request &request) const;

    std::vector<std::shared_ptr<CameraPanel>> cameras_;
};

} // namespace panel

#endif
