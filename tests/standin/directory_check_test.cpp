// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "directory_check.h"

namespace {

constexpr uid_t kRoot = 0;
constexpr uid_t kOwn = 100;
constexpr uid_t kOther = 200;

struct stat statusOf(mode_t mode, uid_t owner) {
    struct stat status {};
    status.st_mode = mode;
    status.st_uid = owner;
    return status;
}

const struct stat kRun = statusOf(S_IFDIR | 0755, kRoot);
const struct stat kTmp = statusOf(S_IFDIR | S_ISVTX | 0777, kRoot);

TEST(DirectoryCheck, AcceptsADirectoryOfTheUserOrOfRoot) {
    for (const uid_t user : {kRoot, kOwn}) {
        for (const mode_t mode : {0700U, 0750U, 0755U}) {
            EXPECT_FALSE(wire::reasonToRefuse(statusOf(S_IFDIR | mode, user), kTmp, user));
            EXPECT_FALSE(wire::reasonToRefuse(statusOf(S_IFDIR | mode, kRoot), kTmp, user));
        }
    }
}

TEST(DirectoryCheck, RefusesADirectoryOfAnotherUser) {
    const struct stat foreign = statusOf(S_IFDIR | 0700, kOther);
    const char *const reason = "belongs to user 200; run the camera and the agent as the same user";
    EXPECT_EQ(reason, wire::reasonToRefuse(foreign, kRun, kOwn));
    EXPECT_EQ(reason, wire::reasonToRefuse(foreign, kTmp, kOwn));
    EXPECT_EQ(reason, wire::reasonToRefuse(foreign, kTmp, kRoot));
    EXPECT_EQ(reason, wire::reasonToRefuse(foreign, statusOf(S_IFDIR | 0755, kOther), kRoot));
}

TEST(DirectoryCheck, TrustsAsRootADirectoryThatOnlyRootCanPlace) {
    EXPECT_FALSE(wire::reasonToRefuse(statusOf(S_IFDIR | 0700, kOther), kRun, kRoot));
}

TEST(DirectoryCheck, RefusesADirectoryThatOthersCanWrite) {
    for (const mode_t mode : {0720U, 0702U, 0777U, 01777U}) {
        EXPECT_EQ("is writable by other users; run chmod go-w on it",
                  wire::reasonToRefuse(statusOf(S_IFDIR | mode, kOwn), kRun, kOwn));
    }
}

TEST(DirectoryCheck, RefusesOtherFiles) {
    EXPECT_EQ("is a symbolic link; give the path of the directory itself",
              wire::reasonToRefuse(statusOf(S_IFLNK | 0777, kRoot), kRun, kOwn));
    EXPECT_EQ("is not a directory", wire::reasonToRefuse(statusOf(S_IFREG | 0600, kOwn), kRun, kOwn));
}

} // namespace
