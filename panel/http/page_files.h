// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Files of the page, which are part of the program.
 */
#ifndef QUARNSNMP_PANEL_PAGE_FILES_H
#define QUARNSNMP_PANEL_PAGE_FILES_H

#include <cstddef>
#include <string>

#include "http_request.h"
#include "http_response.h"

namespace panel {

/** A file, made from panel/page/ by the build. */
struct PageFile {
    const char *path;   ///< such as "/log.js"
    const char *type;   ///< media type
    const char *digest; ///< of the contents
    const unsigned char *data;
    std::size_t size;
};

/** Returns all files. */
const std::vector<PageFile> &pageFiles();

/** Finds the file of a path; "/" is that of "/index.html". @return null without one */
const PageFile *pageFileAt(const std::string &path);

/** Answers a request for a file: its contents, or that the browser has it already. */
Response pageFileResponse(const PageFile &file, const Request &request);

} // namespace panel

#endif
