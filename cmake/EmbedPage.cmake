# SPDX-License-Identifier: Apache-2.0
# Writes the files of the panel's page as C++. Usage:
# cmake -DDIRECTORY=panel/page -DFILES="a;b" -DOUTPUT=page_data.cpp -P EmbedPage.cmake
set(type_html "text/html; charset=utf-8")
set(type_css "text/css; charset=utf-8")
set(type_js "text/javascript; charset=utf-8")
set(type_json "application/json")
set(type_webmanifest "application/manifest+json")
set(type_svg "image/svg+xml")
set(type_png "image/png")
set(type_ico "image/x-icon")

set(arrays "")
set(rows "")
set(number 0)
foreach(file IN LISTS FILES)
  cmake_path(RELATIVE_PATH file BASE_DIRECTORY ${DIRECTORY} OUTPUT_VARIABLE path)
  cmake_path(GET file EXTENSION LAST_ONLY extension)
  string(SUBSTRING "${extension}" 1 -1 extension)
  if(NOT DEFINED type_${extension})
    message(FATAL_ERROR "${file}: the server has no media type for .${extension}")
  endif()
  file(READ ${file} data HEX)
  file(SHA256 ${file} digest)
  string(SUBSTRING ${digest} 0 20 digest)
  string(REGEX REPLACE "(..)" "0x\\1," data "${data}")
  string(APPEND arrays "const unsigned char kData${number}[] = {${data}0};\n")
  string(APPEND rows
    "    {\"/${path}\", \"${type_${extension}}\", \"${digest}\", kData${number}, sizeof kData${number} - 1},\n")
  math(EXPR number "${number} + 1")
endforeach()
file(WRITE ${OUTPUT} "// Made from the files of panel/page by cmake/EmbedPage.cmake.
#include \"page_files.h\"

namespace {
${arrays}} // namespace

namespace panel {

const std::vector<PageFile> &pageFiles() {
  static const std::vector<PageFile> files = {
${rows}  };
  return files;
}

} // namespace panel
")
