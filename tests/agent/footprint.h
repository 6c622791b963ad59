// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Resources of an agent, which must not grow while it runs.
 */
#ifndef QUARNSNMP_FOOTPRINT_H
#define QUARNSNMP_FOOTPRINT_H

#include <cstddef>
#include <ostream>

#include <gtest/gtest.h>

#include "agent.h"
#include "eventually.h"
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

/** Waits until an agent has no more descriptors and threads than before: a poll opens a descriptor for a moment. */
inline bool hasNoMoreThan(const Footprint &before, const Agent &agent) {
    return support::eventually([&] {
        const Footprint now = footprint(agent);
        return now.descriptors <= before.descriptors && now.threads <= before.threads;
    });
}

/** Variation of the agent's own memory: its allocator keeps freed memory. */
inline constexpr std::size_t kSlackKilobytes = 512;

/** Returns false with a sanitizer, which keeps freed memory: the process grows without a leak. */
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
