// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * What an agent holds of the machine, which must not grow while it runs.
 */
#ifndef QUARNSNMP_FOOTPRINT_H
#define QUARNSNMP_FOOTPRINT_H

#include <cstddef>
#include <ostream>

#include <gtest/gtest.h>

#include "agent.h"
#include "process_information.h"
#include "settings.h"

namespace harness {

struct Footprint {
    std::size_t descriptors;
    std::size_t threads;
    std::size_t kilobytes; ///< resident memory
};

inline Footprint footprint(const Agent &agent) {
    return {descriptorCount(agent.pid()), threadCount(agent.pid()), residentKilobytes(agent.pid())};
}

inline std::ostream &operator<<(std::ostream &stream, const Footprint &footprint) {
    return stream << footprint.descriptors << " descriptors, " << footprint.threads << " threads, "
                  << footprint.kilobytes << " kB";
}

/** The agent's own memory is not quite the same at any two times: its allocator keeps what it may need again. */
inline constexpr std::size_t kSlackKilobytes = 512;

/** A sanitizer keeps freed memory back, so with one the process grows whatever the module does. */
inline bool memoryTells() {
    return sanitizerRuntimes().empty();
}

inline void expectFlat(const Footprint &before, const Footprint &after, std::size_t slack = kSlackKilobytes) {
    EXPECT_EQ(before.descriptors, after.descriptors);
    EXPECT_EQ(before.threads, after.threads);
    if (memoryTells()) {
        EXPECT_LE(after.kilobytes, before.kilobytes + slack);
    }
}

} // namespace harness

#endif
