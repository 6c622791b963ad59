// SPDX-License-Identifier: Apache-2.0
#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <regex>
#include <set>
#include <sstream>
#include <string>

#include <dlfcn.h>
#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "eventually.h"
#include "scripted_server.h"
#include "temporary_directory.h"
#include "zorva-core.h"

using namespace support;

namespace {

std::string outputOf(const std::string &command) {
    const std::unique_ptr<FILE, int (*)(FILE *)> pipe(::popen(command.c_str(), "r"), &::pclose);
    std::string output;
    std::array<char, 4096> piece{};
    while (pipe != nullptr && std::fgets(piece.data(), piece.size(), pipe.get()) != nullptr) {
        output += piece.data();
    }
    return output;
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
    std::ifstream maps("/proc/self/maps");
    std::stringstream content;
    content << maps.rdbuf();
    return content.str().find("libzorva-core") != std::string::npos;
}

std::size_t entriesOf(const char *directory) {
    std::size_t count = 0;
    for ([[maybe_unused]] const auto &entry : std::filesystem::directory_iterator(directory)) {
        ++count;
    }
    return count;
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
                descriptors = entriesOf("/proc/self/fd");
                threads = entriesOf("/proc/self/task");
                memory = ::mallinfo2().uordblks;
            }
            useOnce(isEnded);
            ASSERT_FALSE(HasFatalFailure());
            ASSERT_FALSE(isMapped());
        }
        ASSERT_TRUE(eventually([&] { return server.openConnections() == 0; }));
        EXPECT_EQ(descriptors, entriesOf("/proc/self/fd"));
        EXPECT_EQ(threads, entriesOf("/proc/self/task"));
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
    EXPECT_EQ("still here\n", outputOf("echo still here"));
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
    std::istringstream lines(outputOf(NM_PROGRAM " --dynamic --defined-only --demangle " STANDIN_LIBRARY));
    for (std::string line; std::getline(lines, line);) {
        // Address, type and name; the name may have blanks in it.
        constexpr std::size_t kNameColumn = sizeof "0000000000000000 T " - 1;
        ASSERT_GT(line.size(), kNameColumn) << line;
        exported.insert(line.substr(kNameColumn));
    }
    EXPECT_EQ(expected, exported);
}

TEST(Symbols, NoneKeepsTheLibraryMapped) {
    const std::string symbols = outputOf(READELF_PROGRAM " --wide --symbols " STANDIN_LIBRARY);
    EXPECT_NE(std::string::npos, symbols.find("zorva_core_init")) << symbols;
    EXPECT_EQ(std::string::npos, symbols.find("UNIQUE"));
    EXPECT_EQ(std::string::npos, outputOf(READELF_PROGRAM " --dynamic " STANDIN_LIBRARY).find("NODELETE"));
}

TEST(Symbols, NameOfTheLibraryIsFixed) {
    EXPECT_NE(std::string::npos,
              outputOf(READELF_PROGRAM " --dynamic " STANDIN_LIBRARY).find("Library soname: [libzorva-core.so]"));
}

} // namespace
