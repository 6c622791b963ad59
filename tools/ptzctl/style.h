// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Colours and aligned columns.
 */
#ifndef PTZCTL_STYLE_H
#define PTZCTL_STYLE_H

#include <string>
#include <vector>

namespace ptzctl {

/** Colours of a terminal. Without them the texts stay unchanged. */
struct Style {
    bool coloured = false;

    std::string heading(const std::string &text) const;
    std::string active(const std::string &text) const;
    std::string trouble(const std::string &text) const;
    std::string faint(const std::string &text) const;
};

/** Tests whether output to a descriptor is coloured: it is a terminal, and NO_COLOR is unset or empty. */
bool wantsColours(int descriptor);

/** Counts the columns of a terminal that a text in UTF-8 occupies. Colours occupy none. */
std::size_t displayWidth(const std::string &text);

/** Writes rows as lines with aligned cells, two blanks apart and without trailing blanks. */
std::string alignedRows(const std::vector<std::vector<std::string>> &rows);

} // namespace ptzctl

#endif
