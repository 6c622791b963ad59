// SPDX-License-Identifier: Apache-2.0
#include "page_files.h"

#include <algorithm>

namespace panel {

const PageFile *pageFileAt(const std::string &path) {
    const std::string wanted = path == "/" ? "/index.html" : path;
    const auto &files = pageFiles();
    const auto found =
        std::find_if(files.begin(), files.end(), [&](const PageFile &file) { return wanted == file.path; });
    return found == files.end() ? nullptr : &*found;
}

Response pageFileResponse(const PageFile &file, const Request &request) {
    constexpr int kNotModified = 304;
    const std::string tag = std::string("\"") + file.digest + "\"";
    Response response;
    response.headers = {{"ETag", tag}, {"Cache-Control", "no-cache"}};
    const std::string_view known = request.header("if-none-match");
    if (known == "*" || known.find(tag) != std::string_view::npos) {
        response.status = kNotModified;
        return response;
    }
    response.type = file.type;
    response.body = shared(std::string(reinterpret_cast<const char *>(file.data), file.size));
    return response;
}

} // namespace panel
