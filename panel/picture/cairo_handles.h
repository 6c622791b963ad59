// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Owners of Cairo's objects.
 */
#ifndef QUARNSNMP_PANEL_CAIRO_HANDLES_H
#define QUARNSNMP_PANEL_CAIRO_HANDLES_H

#include <memory>

#include <cairo.h>

namespace panel {

struct CairoDeleter {
    void operator()(cairo_t *context) const {
        cairo_destroy(context);
    }
    void operator()(cairo_surface_t *surface) const {
        cairo_surface_destroy(surface);
    }
    void operator()(cairo_pattern_t *pattern) const {
        cairo_pattern_destroy(pattern);
    }
    void operator()(cairo_path_t *path) const {
        cairo_path_destroy(path);
    }
};

using Context = std::unique_ptr<cairo_t, CairoDeleter>;
using Surface2D = std::unique_ptr<cairo_surface_t, CairoDeleter>;
using Pattern = std::unique_ptr<cairo_pattern_t, CairoDeleter>;
using FlatPath = std::unique_ptr<cairo_path_t, CairoDeleter>;

} // namespace panel

#endif
