// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Words of command lines that people copy into a shell.
 */
#ifndef QUARNSNMP_PANEL_SHELL_WORD_H
#define QUARNSNMP_PANEL_SHELL_WORD_H

#include <string>

namespace panel {

/** Quotes a text if a shell would not take it as one plain word. */
std::string shellWord(const std::string &text);

} // namespace panel

#endif
