// SPDX-License-Identifier: Apache-2.0
#include "interruption.h"

#include <csignal>
#include <initializer_list>

namespace ptzctl::check {

namespace {

volatile std::sig_atomic_t isInterrupted = 0;

extern "C" void note(int /*signal*/) {
    isInterrupted = 1;
}

} // namespace

void noteInterruptions() {
    struct sigaction action {};
    action.sa_handler = note;
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        sigaction(signal, &action, nullptr);
    }
}

bool interrupted() {
    return isInterrupted != 0;
}

} // namespace ptzctl::check
