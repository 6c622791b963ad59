// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * Scene files.
 */
#ifndef QUARNSNMP_PANEL_SCENE_FILE_H
#define QUARNSNMP_PANEL_SCENE_FILE_H

#include "scene.h"
#include "text_file.h"

namespace panel {

/** Name of the scene that programs show by default. */
inline constexpr const char *kUsualScene = "intersection";

/** Parses the text of a scene file. @param fileName  for error messages @throws camera::FileError */
Scene parseScene(const std::string &text, const std::string &fileName);

/** Reads a shipped scene by its name, or a scene file by its path. @throws camera::FileError */
Scene readScene(const std::string &nameOrPath);

} // namespace panel

#endif
