// SPDX-License-Identifier: Apache-2.0
#include "library.h"

#include <dlfcn.h>
#include <link.h>

namespace core_check {

namespace {

/** Returns the loader's last message. */
std::string loaderMessage() {
    const char *text = ::dlerror(); // NOLINT(concurrency-mt-unsafe): the message belongs to the thread
    return text != nullptr ? text : "unknown reason";
}

/** Returns true if a failed discovery of the service delays the start of the module. */
bool startWaitsFor(const std::string &service) {
    return service == "lens_focus" || service == "focus_stepper" || service == "iris";
}

} // namespace

void Library::load(const std::string &file) {
    handle_ = ::dlopen(file.c_str(), RTLD_NOW | RTLD_GLOBAL);
    if (handle_ == nullptr) {
        throw Failure(loaderMessage());
    }
}

bool Library::unload(const std::string &file) {
    if (::dlclose(handle_) != 0) {
        throw Failure(loaderMessage());
    }
    handle_ = nullptr;
    void *const mapped = ::dlopen(file.c_str(), RTLD_NOW | RTLD_NOLOAD);
    if (mapped != nullptr) {
        ::dlclose(mapped);
    }
    return mapped == nullptr;
}

std::string Library::soname() const {
    link_map *map = nullptr;
    if (::dlinfo(handle_, RTLD_DI_LINKMAP, &map) != 0) {
        return "";
    }
    const char *texts = nullptr;
    const ElfW(Dyn) *name = nullptr;
    for (const ElfW(Dyn) *entry = map->l_ld; entry->d_tag != DT_NULL; ++entry) {
        if (entry->d_tag == DT_STRTAB) {
            // The loader has replaced the offset by the address.
            texts = reinterpret_cast<const char *>(entry->d_un.d_ptr); // NOLINT(performance-no-int-to-ptr)
        } else if (entry->d_tag == DT_SONAME) {
            name = entry;
        }
    }
    return texts != nullptr && name != nullptr ? texts + name->d_un.d_val : "";
}

void *Library::find(const char *symbol) const {
    return ::dlsym(handle_, symbol);
}

template <typename Function>
Function *Library::get(const char *symbol) const {
    void *const address = find(symbol);
    if (address == nullptr) {
        throw Failure(std::string("there is no ") + symbol);
    }
    return reinterpret_cast<Function *>(address);
}

void Library::require(zorva_core_status status) const {
    if (status != 0) {
        throw Failure("status " + std::to_string(status) + ", " + textOf(status));
    }
}

void Library::init() const {
    require(get<decltype(zorva_core_init)>(symbols::kInit)());
}

void Library::openLog() {
    require(get<decltype(zorva_core_logging_init)>(symbols::kLoggingInit)("SNMP", &log_));
}

void Library::openIpc() {
    require(get<decltype(zorva_core_ipc_initiator_init)>(symbols::kIpcInitiatorInit)(log_, nullptr, &ipc_));
}

void Library::closeIpc() {
    require(get<decltype(zorva_core_ipc_deinit)>(symbols::kIpcDeinit)(ipc_));
}

void Library::closeLog() {
    require(get<decltype(zorva_core_logging_deinit)>(symbols::kLoggingDeinit)(log_));
}

void Library::deinit() const {
    require(get<decltype(zorva_core_deinit)>(symbols::kDeinit)());
}

void Library::start() {
    init();
    openLog();
    openIpc();
}

void Library::stop() {
    closeIpc();
    closeLog();
    deinit();
}

void Library::log(int level, const std::string &text) const {
    get<decltype(zorva_core_logging_log)>(symbols::kLoggingLog)(log_, level, "%s, level %d", text.c_str(), level);
}

std::string Library::textOf(zorva_core_status status) const {
    const char *text = get<decltype(zorva::core::statusToString)>(symbols::kStatusToString)(status);
    if (text == nullptr) {
        throw Failure("status " + std::to_string(status) + " has no text, but a null pointer");
    }
    return printable(text);
}

std::vector<std::string> Library::targetsOf(const Service &service) const {
    std::vector<std::string> targets;
    if (!get<decltype(zorva::core::getTargetIds)>(symbols::kGetTargetIds)(service.name, targets)) {
        throw Failure(std::string("false, so the query failed; for missing hardware, return true without targets") +
                      (startWaitsFor(service.name) ? ". The start of the module waits ten seconds" : ""));
    }
    return targets;
}

void *Library::open(const Service &service) const {
    void *cookie = nullptr;
    require(get<decltype(zorva_api_alarm_initiator_init)>(service.openSymbol)(ipc_, log_, &cookie, 0, nullptr));
    if (cookie == nullptr) {
        throw Failure("status 0 with a null handle, which the module takes for a service that is not open");
    }
    return cookie;
}

void Library::close(const Service &service, void *cookie) const {
    require(get<decltype(zorva_api_alarm_initiator_deinit)>(service.closeSymbol)(cookie));
}

std::string Library::read(const Request &request, void *cookie, const std::string &target) const {
    void *const function = find(request.symbol);
    if (function == nullptr) {
        throw Failure(std::string("there is no ") + request.symbol);
    }
    const Reading reading = request.read(function, cookie, target.c_str());
    require(reading.status);
    return reading.values;
}

} // namespace core_check
