// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Options of the panel.
 */
#ifndef QUARNSNMP_PANEL_OPTIONS_H
#define QUARNSNMP_PANEL_OPTIONS_H

#include <string>
#include <vector>

#include <CLI/CLI.hpp>
#include <boost/asio/ip/tcp.hpp>

#include "camera_panel.h"

namespace panel {

struct Options {
    std::vector<std::string> directories; ///< of the cameras
    std::vector<std::string> agents;      ///< one for each camera
    std::string listenText = "127.0.0.1:8205";
    boost::asio::ip::tcp::endpoint listen;
    std::vector<std::string> hosts;
    std::string trapListen; ///< empty for none
    std::string readCommunity = "public";
    std::string writeCommunity = "private";
    std::string scene = "intersection";
    std::string size = "1280x720";
    FrameFormat format;

    /** Checks the options together, and sets those that follow from others. @throws CLI::ValidationError */
    void check();

    /** Returns the names by which browsers may address the server, besides those of the loopback interface. */
    std::vector<std::string> hostNames() const;
};

/** Adds the options to a command line. */
void addOptions(CLI::App &app, Options &options);

} // namespace panel

#endif
