// SPDX-License-Identifier: Apache-2.0
/** @file Names of the user and the group that run the tests. */
#ifndef QUARNSNMP_USER_NAME_H
#define QUARNSNMP_USER_NAME_H

#include <stdexcept>
#include <string>

#include <grp.h>
#include <pwd.h>
#include <unistd.h>

namespace harness {

inline std::string userName() {
    const passwd *const user = getpwuid(geteuid()); // NOLINT(concurrency-mt-unsafe): one thread
    return user != nullptr ? user->pw_name : throw std::runtime_error("the user of the test has no name");
}

inline std::string groupName() {
    const group *const found = getgrgid(getegid()); // NOLINT(concurrency-mt-unsafe): one thread
    return found != nullptr ? found->gr_name : throw std::runtime_error("the group of the test has no name");
}

} // namespace harness

#endif
