// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * The header of a library, read without loading it.
 */
#ifndef QUARNSNMP_CORE_CHECK_ELF_HEADER_H
#define QUARNSNMP_CORE_CHECK_ELF_HEADER_H

#include <string>

namespace core_check {

/** Returns the reason why a file is not a shared library for this processor; empty if it is one. */
std::string problemOfFile(const std::string &file);

} // namespace core_check

#endif
