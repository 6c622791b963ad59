// SPDX-License-Identifier: Apache-2.0
/**
 * @file
 * JPEG files of pictures that follow each other.
 */
#ifndef QUARNSNMP_PANEL_JPEG_H
#define QUARNSNMP_PANEL_JPEG_H

#include <string>
#include <vector>

#include "canvas.h"

namespace panel {

/**
 * Writes pictures as JPEG files. A file consists of strips with restart markers between them, which do not depend on
 * each other. A strip whose pixels have not changed is taken from the previous file.
 */
class JpegWriter {
public:
    /** Announces that the pixels of a part have changed since the last file. */
    void change(const PixelBox &box);

    /** Announces that all pixels have changed. */
    void changeAll();

    /** Returns the file of a picture. @param quality  from 1 to 100 @throws std::runtime_error */
    std::string compress(Canvas &canvas, int quality);

private:
    struct Strip {
        PixelBox box;
        std::string scan; ///< compressed pixels
        bool isStale = true;
    };

    void layOut(const Canvas &canvas, int quality);
    void compressStrip(Canvas &canvas, Strip &strip);

    int width_ = 0; ///< of the picture, like height and quality: 0 before the first one
    int height_ = 0;
    int quality_ = 0;
    std::string header_;
    std::vector<Strip> strips_;
};

} // namespace panel

#endif
