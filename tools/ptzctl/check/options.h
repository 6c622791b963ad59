// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Options of `check`.
 */
#ifndef PTZCTL_CHECK_OPTIONS_H
#define PTZCTL_CHECK_OPTIONS_H

#include <string>
#include <vector>

namespace ptzctl::check {

struct Options {
    bool writes = false;
    bool moves = false;                  ///< includes `writes`
    std::vector<std::string> disruptive; ///< names of rules that may disrupt the camera's work
    bool ask = false;                    ///< ask a person for what SNMP does not show
    std::string cameraDirectory;         ///< of a simulated camera to look at; empty for none
    int preset = 0;                      ///< number to recall; 0 for none

    std::vector<std::string> only; ///< names of rules; empty for all
    std::vector<std::string> skip;

    std::string readCommunity; ///< community that must not write; empty for none
    std::string credentials;   ///< those of the user, as options of the Net-SNMP programs

    std::string junitFile; ///< empty for none
    std::string htmlFile;
    bool progress = false; ///< write the rule in progress to the standard error
};

} // namespace ptzctl::check

#endif
