// SPDX-License-Identifier: Apache-2.0
#include <fstream>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <dlfcn.h>
#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "eventually.h"
#include "process.h"
#include "process_information.h"
#include "scripted_server.h"
#include "temporary_directory.h"
#include "zorva-core.h"

using namespace support;

namespace {

std::string outputOf(const std::vector<std::string> &command) {
    const CommandResult result = runCommand(command);
    EXPECT_TRUE(result.status.clean()) << result.errors;
    return result.output;
}

/** The library, loaded; its functions are looked up by name. */
class LoadedLibrary {
public:
    LoadedLibrary() : handle_(::dlopen(STANDIN_LIBRARY, RTLD_NOW | RTLD_LOCAL)) {
        if (handle_ == nullptr) {
            throw std::runtime_error(::dlerror());
        }
    }
    ~LoadedLibrary() {
        EXPECT_EQ(0, ::dlclose(handle_));
    }
    LoadedLibrary(const LoadedLibrary &) = delete;
    LoadedLibrary &operator=(const LoadedLibrary &) = delete;

    template <typename Function>
    Function *get(const char *name) const {
        void *const symbol = ::dlsym(handle_, name);
        EXPECT_NE(nullptr, symbol) << name;
        return reinterpret_cast<Function *>(symbol);
    }

private:
    void *handle_;
};

#define LOOK_UP(library, name) (library).get<decltype(name)>(#name)

bool isMapped() {
    return mapsFile(::getpid(), STANDIN_LIBRARY);
}

/** Begins, makes a call and, unless the library is to be left as it is, ends. */
void useOnce(bool isEnded) {
    const LoadedLibrary library;
    void *log = nullptr;
    void *ipc = nullptr;
    void *iris = nullptr;
    uint32_t current = 0;
    uint32_t min = 0;
    uint32_t max = 0;
    ASSERT_EQ(0, LOOK_UP(library, zorva_core_init)());
    ASSERT_EQ(0, LOOK_UP(library, zorva_core_logging_init)("a name that needs memory of its own", &log));
    LOOK_UP(library, zorva_core_logging_log)(log, 6, "loaded");
    ASSERT_EQ(0, LOOK_UP(library, zorva_core_ipc_initiator_init)(log, nullptr, &ipc));
    ASSERT_EQ(0, LOOK_UP(library, zorva_api_iris_initiator_init)(ipc, log, &iris, 0, nullptr));
    ASSERT_EQ(0, LOOK_UP(library, zorva_api_iris_get_position_send)(iris, "camera/1", &current, &min, &max));
    ASSERT_EQ(2U, current);
    if (isEnded) {
        ASSERT_EQ(0, LOOK_UP(library, zorva_api_iris_initiator_deinit)(iris));
        ASSERT_EQ(0, LOOK_UP(library, zorva_core_ipc_deinit)(ipc));
        ASSERT_EQ(0, LOOK_UP(library, zorva_core_logging_deinit)(log));
        ASSERT_EQ(0, LOOK_UP(library, zorva_core_deinit)());
    }
}

class LoadingTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(0, ::setenv("QUARNSNMP_CAMERA_DIR", temporary.path().c_str(), 1));
        ASSERT_EQ(0, ::setenv("QUARNSNMP_LOG_FILE", temporary.file("log").c_str(), 1));
        ASSERT_EQ(0, ::setenv("QUARNSNMP_LOG_LEVEL", "info", 1));
        ASSERT_FALSE(isMapped());
    }

    /** Loads, uses and unloads many times; descriptors, threads and memory must be as before. */
    void expectNothingGrows(bool isEnded) {
        const ScriptedServer server(temporary.path(), "iris", "[0,2,1,3]");
        constexpr int kWarmUp = 50;
        constexpr int kLoads = 1000;
        std::size_t descriptors = 0;
        std::size_t threads = 0;
        std::size_t memory = 0;
        for (int i = 0; i < kWarmUp + kLoads; ++i) {
            if (i == kWarmUp) {
                ASSERT_TRUE(eventually([&] { return server.openConnections() == 0; }));
                descriptors = descriptorCount(::getpid());
                threads = threadCount(::getpid());
                memory = ::mallinfo2().uordblks;
            }
            useOnce(isEnded);
            ASSERT_FALSE(HasFatalFailure());
            ASSERT_FALSE(isMapped());
        }
        ASSERT_TRUE(eventually([&] { return server.openConnections() == 0; }));
        EXPECT_EQ(descriptors, descriptorCount(::getpid()));
        EXPECT_EQ(threads, threadCount(::getpid()));
        // The server keeps every request, which is some fifty octets each time. A sanitizer's own allocator counts
        // nothing here; it reports losses at the end.
        EXPECT_LT(::mallinfo2().uordblks, memory + std::size_t{kLoads} * 150);
    }

    TemporaryDirectory temporary;
};

TEST_F(LoadingTest, ThousandTimesLeavesNothingBehind) {
    expectNothingGrows(true);
}

TEST_F(LoadingTest, ThousandTimesWithoutAnEndLeavesNothingBehind) {
    expectNothingGrows(false);
}

TEST_F(LoadingTest, UnloadedLibraryDoesNotWatchForks) {
    const ScriptedServer server(temporary.path(), "iris", "[0,2,1,3]");
    useOnce(true);
    ASSERT_FALSE(isMapped());
    // A handler that was left behind would be called at an address where nothing is.
    EXPECT_EQ("still here\n", outputOf({"echo", "still here"}));
    const pid_t child = ::fork();
    if (child == 0) {
        ::_exit(7);
    }
    int status = 0;
    ASSERT_EQ(child, ::waitpid(child, &status, 0));
    EXPECT_EQ(7, WEXITSTATUS(status));
}

TEST(ServiceCalls, AreAllThatTheInterfaceDeclares) {
    std::set<std::string> declared;
    std::ifstream header(ZORVA_CORE_HEADER);
    for (std::string line; std::getline(header, line);) {
        std::smatch call;
        if (std::regex_search(line, call, std::regex(R"(^zorva_core_status (zorva_api_\w+)\()"))) {
            declared.insert(call[1]);
        }
    }
    const std::set<std::string> listed = {
#define ZORVA_CALL(service, operation, parameters, ...) "zorva_api_" #service "_" #operation,
#include "service_calls.def"
    };
    EXPECT_EQ(declared, listed);
}

TEST(Symbols, AreExactlyTheInterface) {
    const std::string text = "std::__cxx11::basic_string<char, std::char_traits<char>, std::allocator<char> >";
    std::set<std::string> expected = {
        "zorva_core_init",
        "zorva_core_deinit",
        "zorva_core_logging_init",
        "zorva_core_logging_deinit",
        "zorva_core_logging_log",
        "zorva_core_ipc_initiator_init",
        "zorva_core_ipc_deinit",
        "zorva::core::statusToString(int)",
        "zorva::core::getTargetIds(char const*, std::vector<" + text + ", std::allocator<" + text + " > >&)",
    };
#define ZORVA_SERVICE(service)                                                                                         \
    expected.insert("zorva_api_" #service "_initiator_init");                                                          \
    expected.insert("zorva_api_" #service "_initiator_deinit");
#define ZORVA_CALL(service, operation, parameters, ...) expected.insert("zorva_api_" #service "_" #operation);
#include "service_calls.def"

    std::set<std::string> exported;
    std::istringstream lines(outputOf({NM_PROGRAM, "--dynamic", "--defined-only", "--demangle", STANDIN_LIBRARY}));
    for (std::string line; std::getline(lines, line);) {
        // Address, type and name; the name may have blanks in it.
        constexpr std::size_t kNameColumn = sizeof "0000000000000000 T " - 1;
        ASSERT_GT(line.size(), kNameColumn) << line;
        exported.insert(line.substr(kNameColumn));
    }
    EXPECT_EQ(expected, exported);
}

TEST(Symbols, NoneKeepsTheLibraryMappedAndItsNameIsFixed) {
    const std::string symbols = outputOf({READELF_PROGRAM, "--wide", "--symbols", STANDIN_LIBRARY});
    EXPECT_NE(std::string::npos, symbols.find("zorva_core_init")) << symbols;
    EXPECT_EQ(std::string::npos, symbols.find("UNIQUE"));
    const std::string dynamic = outputOf({READELF_PROGRAM, "--dynamic", STANDIN_LIBRARY});
    EXPECT_EQ(std::string::npos, dynamic.find("NODELETE"));
    EXPECT_NE(std::string::npos, dynamic.find("Library soname: [libzorva-core.so]"));
}

} // namespace
