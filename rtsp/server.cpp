// SPDX-License-Identifier: Apache-2.0
#include "server.h"

#include <csignal>
#include <memory>
#include <stdexcept>

#include <glib-unix.h>
#include <gst/rtsp-server/rtsp-server.h>

namespace rtsp {

namespace {

constexpr guint kMaxSessions = 16;
constexpr guint kSessionSweep = 5; ///< seconds between looks for clients that are gone

// Ports of RTP and RTCP. The library binds them to all addresses unless a pool has one.
constexpr guint16 kFirstMediaPort = 51000;
constexpr guint16 kLastMediaPort = 51199;

struct Unref {
    void operator()(gpointer object) const {
        g_object_unref(object);
    }
};

template <typename Object>
using Owned = std::unique_ptr<Object, Unref>;

void offer(GstRTSPMountPoints *mounts, GstRTSPAddressPool *pool, const std::string &path, const std::string &pipeline) {
    GstRTSPMediaFactory *factory = gst_rtsp_media_factory_new();
    gst_rtsp_media_factory_set_launch(factory, pipeline.c_str());
    gst_rtsp_media_factory_set_shared(factory, TRUE);
    gst_rtsp_media_factory_set_address_pool(factory, pool);
    // Unencrypted RTP over UDP and over the connection itself; no multicast.
    gst_rtsp_media_factory_set_protocols(
        factory, static_cast<GstRTSPLowerTrans>(GST_RTSP_LOWER_TRANS_UDP | GST_RTSP_LOWER_TRANS_TCP));
    gst_rtsp_mount_points_add_factory(mounts, path.c_str(), factory); // takes ownership
}

void offerAll(GstRTSPServer *server, const ServerOptions &options) {
    const Owned<GstRTSPAddressPool> pool(gst_rtsp_address_pool_new());
    if (gst_rtsp_address_pool_add_range(pool.get(), options.address.c_str(), options.address.c_str(), kFirstMediaPort,
                                        kLastMediaPort, 0) == FALSE) {
        throw std::runtime_error(options.address + " is not a numeric address");
    }
    const Owned<GstRTSPMountPoints> mounts(gst_rtsp_server_get_mount_points(server));
    for (int camera = 0; camera < options.cameras; ++camera) {
        Source source = options.source;
        source.camera = camera;
        const std::string suffix = camera == 0 ? "" : "/" + std::to_string(camera);
        offer(mounts.get(), pool.get(), "/camera" + suffix, h264Pipeline(source));
        offer(mounts.get(), pool.get(), "/camera-mjpeg" + suffix, jpegPipeline(source));
    }
}

gboolean quit(gpointer loop) {
    g_main_loop_quit(static_cast<GMainLoop *>(loop));
    return G_SOURCE_CONTINUE;
}

/** Ends the sessions of clients that have gone without a word. */
gboolean sweep(gpointer pool) {
    gst_rtsp_session_pool_cleanup(static_cast<GstRTSPSessionPool *>(pool));
    return G_SOURCE_CONTINUE;
}

} // namespace

void serve(const ServerOptions &options, const std::function<void(int port)> &ready) {
    const Owned<GstRTSPServer> server(gst_rtsp_server_new());
    gst_rtsp_server_set_address(server.get(), options.address.c_str());
    gst_rtsp_server_set_service(server.get(), std::to_string(options.port).c_str());
    offerAll(server.get(), options);
    const Owned<GstRTSPSessionPool> sessions(gst_rtsp_server_get_session_pool(server.get()));
    gst_rtsp_session_pool_set_max_sessions(sessions.get(), kMaxSessions);
    if (gst_rtsp_server_attach(server.get(), nullptr) == 0) {
        throw std::runtime_error("cannot listen on " + options.address + ":" + std::to_string(options.port));
    }
    const std::unique_ptr<GMainLoop, decltype(&g_main_loop_unref)> loop(g_main_loop_new(nullptr, FALSE),
                                                                        g_main_loop_unref);
    g_unix_signal_add(SIGINT, quit, loop.get());
    g_unix_signal_add(SIGTERM, quit, loop.get());
    g_timeout_add_seconds(kSessionSweep, sweep, sessions.get());
    ready(gst_rtsp_server_get_bound_port(server.get()));
    g_main_loop_run(loop.get());
}

} // namespace rtsp
