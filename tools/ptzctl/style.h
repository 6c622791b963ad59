// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * How texts look: colours, and columns that stand below each other.
 */
#ifndef PTZCTL_STYLE_H
#define PTZCTL_STYLE_H

#include <string>
#include <vector>

namespace ptzctl {

/** Colours for a terminal; without them every text is left as it is. */
struct Style {
    bool coloured = false;

    std::string heading(const std::string &text) const;
    std::string active(const std::string &text) const;
    std::string trouble(const std::string &text) const;
    std::string faint(const std::string &text) const;
};

/** Whether what is written to a descriptor is to be coloured: it is a terminal, and NO_COLOR is unset or empty. */
bool wantsColours(int descriptor);

/** How many columns of a terminal a text in UTF-8 takes; colours take none. */
std::size_t displayWidth(const std::string &text);

/** Rows as lines, their cells aligned and two blanks apart; there are none at the end of a line. */
std::string alignedRows(const std::vector<std::vector<std::string>> &rows);

} // namespace ptzctl

#endif
