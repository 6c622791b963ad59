// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The wrong agent as a program, for people who write testers.
 */
#include <csignal>
#include <exception>
#include <iostream>
#include <map>
#include <string>

#include <CLI/CLI.hpp>

#include "agent.h"
#include "faults.h"

namespace {

void list() {
    for (const wrong::Fault &fault : wrong::faults()) {
        std::cout << fault.rule << ": " << fault.effect << '\n';
    }
}

int run(int argc, char **argv) {
    CLI::App app("Serves a camera of NTCIP 1205 on 127.0.0.1 until Ctrl-C, if asked with one fault.\n"
                 "The community public reads, private writes as well.",
                 "wrong-agent");
    std::uint16_t port = 1165;
    std::string fault;
    bool lists = false;
    wrong::Dialect dialect;
    app.add_option("--port", port, "UDP port, 0 for a free one")->capture_default_str();
    app.add_option("--fault", fault, "Name of a fault");
    app.add_flag("--list", lists, "List the faults");
    app.add_option("--byte-order", dialect.order, "First octet of a position: high, or low")
        ->transform(CLI::CheckedTransformer(std::map<std::string, ptz::ByteOrder>{{"low", ptz::ByteOrder::LowFirst},
                                                                                  {"high", ptz::ByteOrder::HighFirst}}))
        ->default_str("high");
    app.add_flag("--positions", dialect.answersPosition, "Answer the position instead of the last command");
    app.add_flag("--vendor", dialect.isVendors, "Serve the vendor's instances and types");
    CLI11_PARSE(app, argc, argv);
    if (lists) {
        list();
        return 0;
    }
    // Blocked before the agent's thread starts, so that sigwait() gets them.
    sigset_t ends;
    sigemptyset(&ends);
    sigaddset(&ends, SIGINT);
    sigaddset(&ends, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &ends, nullptr);
    const wrong::Agent agent(dialect, fault, port);
    std::cout << agent.host() << std::endl;
    int signal = 0;
    sigwait(&ends, &signal);
    return 0;
}

} // namespace

int main(int argc, char **argv) {
    try {
        return run(argc, argv);
    } catch (const std::exception &error) {
        std::cerr << "wrong-agent: " << error.what() << '\n';
        return 2;
    }
}
