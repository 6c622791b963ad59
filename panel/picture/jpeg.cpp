// SPDX-License-Identifier: Apache-2.0
#include "jpeg.h"

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <string_view>

#include <turbojpeg.h>

namespace panel {

namespace {

constexpr int kPixelOctets = 4;
constexpr int kBlock = 16; ///< side in pixels of the blocks that a strip consists of, with halved colours

struct CompressorDeleter {
    void operator()(void *compressor) const {
        tjDestroy(compressor);
    }
};

struct BufferDeleter {
    void operator()(unsigned char *buffer) const {
        tjFree(buffer);
    }
};

using Buffer = std::unique_ptr<unsigned char, BufferDeleter>;

/** Compressor of this thread: its construction costs more than a small picture. */
tjhandle compressor() {
    thread_local const std::unique_ptr<void, CompressorDeleter> handle(tjInitCompress());
    if (!handle) {
        throw std::runtime_error("no memory for a JPEG compressor");
    }
    return handle.get();
}

/** Markers of the format. */
enum class Marker : unsigned char {
    StartOfFrame = 0xC0,
    FirstRestart = 0xD0,
    EndOfImage = 0xD9,
    StartOfScan = 0xDA,
    RestartInterval = 0xDD,
};

std::string markerText(Marker marker, unsigned offset = 0) {
    return {'\xFF', static_cast<char>(static_cast<unsigned>(marker) + offset)};
}

std::string twoOctets(int value) {
    const auto number = static_cast<unsigned>(value);
    return {static_cast<char>(number >> 8U & 0xFFU), static_cast<char>(number & 0xFFU)};
}

/** Returns the place of a segment in a file. @throws std::runtime_error without it */
std::size_t findSegment(std::string_view file, Marker marker) {
    constexpr std::size_t kStart = 2;
    const auto octet = [&](std::size_t place) { return static_cast<unsigned char>(file.at(place)); };
    std::size_t place = kStart;
    while (place + 4 <= file.size() && octet(place + 1) != static_cast<unsigned char>(marker)) {
        place += 2U + (static_cast<std::size_t>(octet(place + 2)) << 8U) + octet(place + 3);
    }
    if (place + 4 > file.size()) {
        throw std::runtime_error("a JPEG file without its segments");
    }
    return place;
}

/** Returns the place of the compressed pixels, behind the header of their segment. */
std::size_t findScan(std::string_view file) {
    const std::size_t place = findSegment(file, Marker::StartOfScan);
    const auto octet = [&](std::size_t at) { return static_cast<unsigned char>(file.at(at)); };
    return place + 2U + (static_cast<std::size_t>(octet(place + 2)) << 8U) + octet(place + 3);
}

/** Makes the header of a picture from that of one of its strips. @param interval  blocks of a strip */
std::string headerOf(std::string_view strip, int width, int height, int interval) {
    constexpr std::size_t kSize = 5; ///< place of height and width in the segment
    std::string header(strip.substr(0, findScan(strip)));
    header.replace(findSegment(strip, Marker::StartOfFrame) + kSize, 4, twoOctets(height) + twoOctets(width));
    header.insert(findSegment(strip, Marker::StartOfScan),
                  markerText(Marker::RestartInterval) + twoOctets(4) + twoOctets(interval));
    return header;
}

} // namespace

void JpegWriter::change(const PixelBox &box) {
    for (Strip &strip : strips_) {
        strip.isStale = strip.isStale || strip.box.overlaps(box);
    }
}

void JpegWriter::changeAll() {
    for (Strip &strip : strips_) {
        strip.isStale = true;
    }
}

void JpegWriter::layOut(const Canvas &canvas, int quality) {
    width_ = canvas.width();
    height_ = canvas.height();
    quality_ = quality;
    header_.clear();
    strips_.clear();
    for (int top = 0; top < height_; top += kBlock) {
        strips_.push_back({{0, top, width_, std::min(top + kBlock, height_)}, {}, true});
    }
}

void JpegWriter::compressStrip(Canvas &canvas, Strip &strip) {
    const int height = strip.box.bottom - strip.box.top;
    unsigned long size = tjBufSize(width_, kBlock, TJSAMP_420);
    thread_local Buffer buffer;
    thread_local unsigned long room = 0;
    if (room < size) {
        buffer.reset(tjAlloc(static_cast<int>(size)));
        room = buffer ? size : 0;
    }
    unsigned char *octets = buffer.get();
    const std::uint8_t *pixels = canvas.pixels() + static_cast<std::ptrdiff_t>(strip.box.top) * width_ * kPixelOctets;
    if (octets == nullptr ||
        tjCompress2(compressor(), pixels, width_, width_ * kPixelOctets, height, TJPF_BGRX, &octets, &size, TJSAMP_420,
                    quality_, TJFLAG_NOREALLOC | TJFLAG_FASTDCT) != 0) {
        throw std::runtime_error(std::string("cannot compress a picture: ") + tjGetErrorStr2(compressor()));
    }
    const std::string_view file(reinterpret_cast<const char *>(octets), size);
    if (header_.empty()) {
        header_ = headerOf(file, width_, height_, (width_ + kBlock - 1) / kBlock);
    }
    const std::size_t scan = findScan(file);
    strip.scan = file.substr(scan, file.size() - scan - markerText(Marker::EndOfImage).size());
    strip.isStale = false;
}

std::string JpegWriter::compress(Canvas &canvas, int quality) {
    if (canvas.width() != width_ || canvas.height() != height_ || quality != quality_) {
        layOut(canvas, quality);
    }
    std::size_t size = 0;
    for (Strip &strip : strips_) {
        if (strip.isStale) {
            compressStrip(canvas, strip);
        }
        size += strip.scan.size() + 2;
    }
    std::string file;
    file.reserve(header_.size() + size);
    file = header_;
    for (std::size_t i = 0; i < strips_.size(); ++i) {
        constexpr unsigned kRestarts = 8;
        file += strips_[i].scan;
        file += i + 1 < strips_.size() ? markerText(Marker::FirstRestart, static_cast<unsigned>(i % kRestarts))
                                       : markerText(Marker::EndOfImage);
    }
    return file;
}

} // namespace panel
