// SPDX-License-Identifier: Apache-2.0
#include "picture_measures.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <queue>
#include <stdexcept>

#include <turbojpeg.h>

namespace panel {

namespace {

constexpr std::size_t kOctets = 4;
constexpr int kRows = 4; ///< distance of the rows that means are made of

/** Returns true for the colour of a beacon. Its edges and losses of the compression do not matter. */
bool isClose(const Color &pixel, const Color &wanted) {
    constexpr int kTolerance = 32;
    return std::abs(pixel.red - wanted.red) < kTolerance && std::abs(pixel.green - wanted.green) < kTolerance &&
           std::abs(pixel.blue - wanted.blue) < kTolerance;
}

} // namespace

Color Photograph::at(int x, int y) const {
    const std::size_t place =
        (static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)) * kOctets;
    return {pixels.at(place + 2), pixels.at(place + 1), pixels.at(place)};
}

Photograph photograph(const Pixels &pixels) {
    const std::size_t size = static_cast<std::size_t>(pixels.width) * static_cast<std::size_t>(pixels.height) * kOctets;
    return {pixels.width, pixels.height, {pixels.data, pixels.data + size}};
}

Photograph decodeJpeg(const std::string &jpeg) {
    const std::unique_ptr<void, int (*)(void *)> decompressor(tjInitDecompress(), tjDestroy);
    const auto *octets = reinterpret_cast<const unsigned char *>(jpeg.data());
    Photograph picture;
    int subsampling = 0;
    int space = 0;
    if (tjDecompressHeader3(decompressor.get(), octets, jpeg.size(), &picture.width, &picture.height, &subsampling,
                            &space) != 0) {
        throw std::runtime_error("not a JPEG file");
    }
    picture.pixels.resize(static_cast<std::size_t>(picture.width) * static_cast<std::size_t>(picture.height) * kOctets);
    if (tjDecompress2(decompressor.get(), octets, jpeg.size(), picture.pixels.data(), picture.width, 0, picture.height,
                      TJPF_BGRX, 0) != 0) {
        throw std::runtime_error("a damaged JPEG file");
    }
    return picture;
}

std::optional<Vec2> findBeacon(const Photograph &picture, const Color &color) {
    // The largest connected area of the hue is the beacon.
    const auto index = [&](int x, int y) {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(picture.width) + static_cast<std::size_t>(x);
    };
    std::vector<bool> open(index(0, picture.height), false);
    for (int y = 0; y < picture.height; ++y) {
        for (int x = 0; x < picture.width; ++x) {
            open[index(x, y)] = isClose(picture.at(x, y), color);
        }
    }
    std::size_t largest = 40;
    std::optional<Vec2> found;
    for (int y = 0; y < picture.height; ++y) {
        for (int x = 0; x < picture.width; ++x) {
            if (!open[index(x, y)]) {
                continue;
            }
            std::queue<std::pair<int, int>> border;
            border.emplace(x, y);
            open[index(x, y)] = false;
            std::size_t count = 0;
            int left = x;
            int right = x;
            const int top = y;
            while (!border.empty()) {
                const auto [px, py] = border.front();
                border.pop();
                ++count;
                left = std::min(left, px);
                right = std::max(right, px);
                for (const auto &[dx, dy] : {std::pair(-1, 0), std::pair(1, 0), std::pair(0, -1), std::pair(0, 1)}) {
                    const int nx = px + dx;
                    const int ny = py + dy;
                    if (nx >= 0 && ny >= 0 && nx < picture.width && ny < picture.height && open[index(nx, ny)]) {
                        open[index(nx, ny)] = false;
                        border.emplace(nx, ny);
                    }
                }
            }
            if (count > largest) {
                largest = count;
                // The label can hide the lower edge, but a disc is as high as it is wide.
                found = Vec2{(left + right + 1) / 2.0, top + (right - left + 1) / 2.0};
            }
        }
    }
    return found;
}

double sharpnessOf(const Photograph &picture) {
    double sum = 0.0;
    for (int y = 0; y < picture.height; y += kRows) {
        for (int x = 1; x < picture.width; ++x) {
            sum += std::abs(picture.at(x, y).green - picture.at(x - 1, y).green);
        }
    }
    return sum * kRows / (static_cast<double>(picture.width) * picture.height);
}

double brightnessOf(const Photograph &picture) {
    double sum = 0.0;
    for (int y = 0; y < picture.height; y += kRows) {
        for (int x = 0; x < picture.width; ++x) {
            const Color color = picture.at(x, y);
            sum += color.red + color.green + color.blue;
        }
    }
    return sum * kRows / (3.0 * picture.width * picture.height);
}

} // namespace panel
