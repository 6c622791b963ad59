// SPDX-License-Identifier: Apache-2.0
#include <cerrno>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <regex>

#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "standin_test.h"

namespace {

class LogTest : public StandInTest {
protected:
    /** Starts the library anew with these settings. */
    void restart(const std::string &file, const std::string &level) {
        TearDown();
        setEnvironment("QUARNSNMP_LOG_FILE", file);
        setEnvironment("QUARNSNMP_LOG_LEVEL", level);
        ASSERT_EQ(wire::kSuccess, zorva_core_init());
        ASSERT_EQ(wire::kSuccess, zorva_core_logging_init("SNMP", &logCookie));
    }

    /** The only line of the log, without its time. */
    std::string onlyText() const {
        const std::vector<std::string> lines = logLines();
        return lines.size() == 1 && lines[0].size() > kTimeLength ? lines[0].substr(kTimeLength)
                                                                  : std::to_string(lines.size()) + " lines";
    }

    void clear() const {
        std::filesystem::resize_file(logFile, 0);
    }

    static constexpr std::size_t kTimeLength = sizeof "2026-11-20 19:06:13.123456 " - 1;
};

TEST_F(LogTest, LineHasTimeNameLevelAndText) {
    zorva_core_logging_log(logCookie, 7, "registerScalar: %s = %d", "sysDescr", 5);
    EXPECT_EQ("SNMP debug registerScalar: sysDescr = 5", onlyText());
    const std::string content = LogFile(logFile).text();
    EXPECT_TRUE(std::regex_match(content, std::regex("[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{6} "
                                                     "SNMP debug registerScalar: sysDescr = 5\n")))
        << content;
}

TEST_F(LogTest, TimeIsNowInUtc) {
    setEnvironment("TZ", "Pacific/Kiritimati");
    const std::time_t before = std::time(nullptr);
    zorva_core_logging_log(logCookie, 6, "now");
    const std::time_t after = std::time(nullptr);
    const std::vector<std::string> lines = logLines();
    ASSERT_EQ(1U, lines.size());
    std::tm fields{};
    ASSERT_NE(nullptr, ::strptime(lines[0].c_str(), "%Y-%m-%d %H:%M:%S", &fields));
    const std::time_t logged = ::timegm(&fields);
    EXPECT_GE(logged, before);
    EXPECT_LE(logged, after);
}

TEST_F(LogTest, EveryLevelHasItsWord) {
    const std::vector<std::string> words = {"emergency", "alert",  "critical", "error",
                                            "warning",   "notice", "info",     "debug"};
    for (std::size_t level = 0; level < words.size(); ++level) {
        clear();
        zorva_core_logging_log(logCookie, static_cast<int>(level), "text");
        EXPECT_EQ("SNMP " + words[level] + " text", onlyText());
    }
    clear();
    zorva_core_logging_log(logCookie, -3, "text");
    EXPECT_EQ("SNMP emergency text", onlyText());
    zorva_core_logging_log(logCookie, 8, "text");
    EXPECT_EQ(1U, logLines().size());
}

TEST_F(LogTest, ThresholdIsANumberOrAWord) {
    const std::vector<std::pair<std::string, std::size_t>> settings = {{"0", 1},         {"3", 4},     {"7", 8},
                                                                       {"emergency", 1}, {"error", 4}, {"notice", 6},
                                                                       {"info", 7},      {"debug", 8}, {"", 7}};
    for (const auto &[setting, expected] : settings) {
        clear();
        restart(logFile, setting);
        for (int level = 0; level <= 7; ++level) {
            zorva_core_logging_log(logCookie, level, "text");
        }
        EXPECT_EQ(expected, logLines().size()) << setting;
    }
}

TEST_F(LogTest, ThresholdThatIsNoneIsReportedAndCountsAsInfo) {
    for (const std::string setting : {"8", "-1", "77", "verbose", "ERROR", " 3"}) {
        clear();
        restart(logFile, setting);
        zorva_core_logging_log(logCookie, 6, "heard");
        zorva_core_logging_log(logCookie, 7, "not heard");
        const std::vector<std::string> lines = logLines();
        ASSERT_EQ(2U, lines.size()) << setting;
        EXPECT_EQ("zorva-core warning QUARNSNMP_LOG_LEVEL is '" + setting + "', which is not a level; using info",
                  lines[0].substr(kTimeLength));
        EXPECT_EQ("SNMP info heard", lines[1].substr(kTimeLength));
    }
}

TEST_F(LogTest, LinesWithoutAnOpenContextAreDropped) {
    int unknown = 0;
    for (void *const cookie : {static_cast<void *>(nullptr), static_cast<void *>(&unknown), ipcCookie}) {
        zorva_core_logging_log(cookie, 3, "text");
    }
    ASSERT_EQ(wire::kSuccess, zorva_core_logging_deinit(logCookie));
    EXPECT_EQ(wire::kInvalidHandle, zorva_core_logging_deinit(logCookie));
    zorva_core_logging_log(logCookie, 3, "text");
    EXPECT_TRUE(logLines().empty());
}

TEST_F(LogTest, ControlCharactersBecomeEscapes) {
    zorva_core_logging_log(logCookie, 6, "%s", "a\nb\tc\rd\x1b[31me\x7f\x01 gr\xc3\xb6\xc3\x9f\x65 50% \\");
    EXPECT_EQ("SNMP info a\\nb\\tc\\rd\\x1b[31me\\x7f\\x01 gr\xc3\xb6\xc3\x9f\x65 50% \\", onlyText());
}

TEST_F(LogTest, ContextsHaveCopiesOfTheirNames) {
    for (const auto &[given, written] : {std::pair("trap sender", "trap sender"), std::pair("a\nb", "a\\nb")}) {
        clear();
        void *context = nullptr;
        std::string name = given;
        ASSERT_EQ(wire::kSuccess, zorva_core_logging_init(name.c_str(), &context));
        name.assign(name.size(), '?');
        zorva_core_logging_log(context, 5, "text");
        EXPECT_EQ(std::string(written) + " notice text", onlyText());
    }
}

TEST_F(LogTest, LongLinesAreCutAndMarked) {
    constexpr std::size_t kLongest = 4096 - 1;
    const std::string fits(kLongest - kTimeLength - std::string("SNMP info ").size() - std::string(" [cut]").size(),
                           'x');
    zorva_core_logging_log(logCookie, 6, "%s", fits.c_str());
    EXPECT_EQ("SNMP info " + fits, onlyText());
    for (const std::size_t surplus : {1U, 7U, 1000U, 100000U}) {
        clear();
        zorva_core_logging_log(logCookie, 6, "%s", (fits + std::string(surplus, 'y')).c_str());
        EXPECT_EQ("SNMP info " + fits + " [cut]", onlyText());
    }
}

TEST_F(LogTest, CharactersAndEscapesAreNotCutInHalf) {
    for (const std::string piece : {"\xc3\xb6", "\xe2\x82\xac", "\xf0\x9f\x93\xb7", "\x01"}) {
        for (std::size_t lead = 0; lead < 4; ++lead) {
            clear();
            std::string text(lead, 'x');
            while (text.size() < 5000) {
                text += piece;
            }
            zorva_core_logging_log(logCookie, 6, "%s", text.c_str());
            const std::string expectedPiece = piece == "\x01" ? "\\x01" : piece;
            const std::string line = onlyText();
            const std::string start = "SNMP info " + std::string(lead, 'x');
            ASSERT_EQ(0U, line.rfind(start, 0));
            ASSERT_GT(line.size(), 4000U);
            std::string rest = line.substr(start.size());
            while (rest.rfind(expectedPiece, 0) == 0) {
                rest.erase(0, expectedPiece.size());
            }
            EXPECT_EQ(" [cut]", rest) << lead;
        }
    }
}

TEST_F(LogTest, ErrorNumberIsKept) {
    restart("/dev/full", "debug");
    errno = ENOENT;
    zorva_core_logging_log(logCookie, 3, "this line cannot be written");
    EXPECT_EQ(ENOENT, errno);
}

TEST_F(LogTest, FileIsItsOwnersAndIsAppendedTo) {
    TearDown();
    std::filesystem::remove(logFile);
    ::umask(0);
    {
        restart(logFile, "info");
        zorva_core_logging_log(logCookie, 6, "first");
    }
    struct stat status {};
    ASSERT_EQ(0, ::stat(logFile.c_str(), &status));
    EXPECT_EQ(0600U, status.st_mode & 0777U);
    restart(logFile, "info");
    zorva_core_logging_log(logCookie, 6, "second");
    ASSERT_EQ(2U, logLines().size());
    EXPECT_EQ("SNMP info first", logLines()[0].substr(kTimeLength));
}

TEST_F(LogTest, StandardErrorIsTheDefault) {
    ::testing::internal::CaptureStderr();
    restart("", "info");
    zorva_core_logging_log(logCookie, 6, "said aloud");
    const std::string output = ::testing::internal::GetCapturedStderr();
    EXPECT_EQ("SNMP info said aloud\n", output.substr(std::min(kTimeLength, output.size())));
}

TEST_F(LogTest, FileThatCannotBeOpenedIsReportedOnce) {
    const std::string impossible = temporary.file("missing/log");
    ::testing::internal::CaptureStderr();
    restart(impossible, "info");
    ASSERT_EQ(wire::kSuccess, zorva_core_init());
    zorva_core_logging_log(logCookie, 6, "said aloud");
    const std::string output = ::testing::internal::GetCapturedStderr();
    const std::string report = "zorva-core error cannot open the log file " + impossible +
                               ": No such file or directory; logging to standard error\n";
    EXPECT_EQ(kTimeLength, output.find(report)) << output;
    EXPECT_EQ(2 * kTimeLength + report.size(), output.find("SNMP info said aloud\n")) << output;
}

TEST_F(LogTest, PipeWithoutAReaderNeitherBlocksNorKills) {
    const std::string pipe = temporary.file("pipe");
    ASSERT_EQ(0, ::mkfifo(pipe.c_str(), 0600));
    ::testing::internal::CaptureStderr();
    restart(pipe, "info");
    EXPECT_NE(std::string::npos, ::testing::internal::GetCapturedStderr().find("cannot open the log file"));

    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        int ends[2] = {-1, -1};
        if (::signal(SIGPIPE, SIG_DFL) == SIG_ERR || ::pipe(ends) != 0 || ::dup2(ends[1], STDERR_FILENO) < 0) {
            ::_exit(1);
        }
        ::close(ends[0]);
        zorva_core_logging_log(logCookie, 3, "nobody reads this");
        sigset_t pending;
        ::sigpending(&pending);
        ::_exit(::sigismember(&pending, SIGPIPE) == 0 ? 0 : 2);
    }
    int status = -1;
    ASSERT_EQ(child, ::waitpid(child, &status, 0));
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(0, WEXITSTATUS(status));
}

TEST_F(LogTest, LinesOfTwoThreadsStayWhole) {
    const std::string text(200, 'z');
    inThreads(2, [&](int /*number*/) {
        for (int line = 0; line < 1000; ++line) {
            zorva_core_logging_log(logCookie, 6, "%s", text.c_str());
        }
    });
    const std::vector<std::string> lines = logLines();
    EXPECT_EQ(2000U, lines.size());
    for (const std::string &line : lines) {
        EXPECT_EQ("SNMP info " + text, line.substr(kTimeLength));
    }
}

} // namespace
