// SPDX-License-Identifier: Apache-2.0
#include "options.h"

#include <cstdlib>
#include <regex>

#include "guard.h"
#include "picture.h"

namespace panel {

namespace {

constexpr int kFastestRate = 60;
constexpr unsigned long kHighestPort = 65535;

} // namespace

void Options::check() {
    if (directories.size() != agents.size()) {
        throw CLI::ValidationError("--camera and --agent", "each camera needs one agent");
    }
    const std::optional<HostAndPort> address = splitHost(listenText);
    boost::system::error_code error;
    const auto host = boost::asio::ip::make_address(address ? address->host : "", error);
    const unsigned long port =
        address && !address->port.empty() ? std::strtoul(address->port.c_str(), nullptr, 10) : kHighestPort + 1;
    if (error || port > kHighestPort) {
        throw CLI::ValidationError("--listen", "'" + listenText + "' is not ADDRESS:PORT or [ADDRESS]:PORT");
    }
    listen = {host, static_cast<unsigned short>(port)};
    std::smatch sides;
    const bool isSize = std::regex_match(size, sides, std::regex("([0-9]{1,5})x([0-9]{1,5})"));
    if (isSize) {
        format.width = std::stoi(sides[1].str());
        format.height = std::stoi(sides[2].str());
    }
    for (const int side : {format.width, format.height}) {
        if (!isSize || side < kSmallestSide || side > kLargestSide) {
            throw CLI::ValidationError("--size", "'" + size + "' is not WIDTHxHEIGHT, from " +
                                                     std::to_string(kSmallestSide) + " to " +
                                                     std::to_string(kLargestSide) + " each");
        }
    }
}

std::vector<std::string> Options::hostNames() const {
    std::vector<std::string> names = hosts;
    names.push_back(listen.address().to_string());
    return names;
}

void addOptions(CLI::App &app, Options &options) {
    app.add_option("--camera", options.directories, "Directory of a camera's sockets; can be repeated")
        ->type_name("DIR")
        ->required()
        ->take_all();
    app.add_option("--agent", options.agents, "Agent of the camera, one for each --camera")
        ->type_name("HOST:PORT")
        ->required()
        ->take_all();
    app.add_option("--listen", options.listenText, "Address of the page; there is no password")
        ->type_name("ADDRESS:PORT")
        ->capture_default_str();
    app.add_option("--host", options.hosts, "Further name of this machine in the address of the page")
        ->type_name("NAME");
    app.add_option("--trap-listen", options.trapListen, "Address for the traps of the agents; by default, none")
        ->type_name("ADDRESS:PORT");
    app.add_option("--read-community", options.readCommunity, "Community that reads the table of objects")
        ->type_name("TEXT")
        ->capture_default_str();
    app.add_option("-c,--community", options.writeCommunity, "Community of movements and other actions")
        ->type_name("TEXT")
        ->capture_default_str();
    app.add_option("--scene", options.scene, "Name of a shipped scene, or path of a scene file")
        ->type_name("NAME|FILE")
        ->capture_default_str();
    app.add_option("--size", options.size, "Size of the picture in pixels")->type_name("WxH")->capture_default_str();
    app.add_option("--fps", options.format.framesPerSecond, "Frames per second")
        ->type_name("N")
        ->check(CLI::Range(1, kFastestRate))
        ->capture_default_str();
    app.set_version_flag("--version", std::string("quarnsnmp-panel ") + QUARNSNMP_VERSION);
}

} // namespace panel
