// SPDX-License-Identifier: Apache-2.0
#include "picture.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <optional>
#include <stdexcept>
#include <tuple>
#include <utility>

#include "blur.h"
#include "jpeg.h"
#include "stage.h"
#include "stamp.h"

namespace panel {

namespace {

void check(const FrameSettings &settings) {
    const auto isSide = [](int side) { return side >= kSmallestSide && side <= kLargestSide; };
    if (!isSide(settings.width) || !isSide(settings.height) || settings.quality < 1 || settings.quality > 100) {
        throw std::runtime_error("invalid size or quality of a picture");
    }
}

void check(const View &view) {
    const auto isIn = [](double value, double lowest, double highest) { return value >= lowest && value <= highest; };
    if (!isIn(view.bearing, -1e6, 1e6) || !isIn(view.tilt, -1e6, 1e6) || !isIn(view.zoom, 0.01, 1e5) ||
        !isIn(view.fieldOfView, 0.01, 170.0) || !isIn(view.defocus, 0.0, 1e3) || !isIn(view.exposure, 0.0, 1e6)) {
        throw std::runtime_error("invalid view of a picture");
    }
}

/** Everything that the background of a picture depends on. */
struct Direction {
    double bearing;
    double tilt;
    double zoom;
    double fieldOfView;
    double exposure;
    int width;
    int height;
    std::vector<bool> inputs;
    std::vector<bool> relays;

    auto members() const {
        return std::tie(bearing, tilt, zoom, fieldOfView, exposure, width, height, inputs, relays);
    }
};

bool operator==(const Direction &left, const Direction &right) {
    return left.members() == right.members();
}

} // namespace

/** Everything that a picture keeps for the next one. */
class Picture::Parts {
public:
    explicit Parts(const Scene &scene) : mount_(scene.camera), stage_(scene) {}

    Canvas &draw(const View &view, const FrameSettings &settings, PictureTime time) {
        check(settings);
        check(view);
        Canvas &canvas = resized(canvas_, settings.width, settings.height);
        std::vector<StampLine> lines;
        if (settings.stamp) {
            View shown = view;
            shown.bearing = view.fixed ? mount_.bearing : view.bearing;
            shown.tilt = view.fixed ? mount_.tilt : view.tilt;
            lines = stampOf(canvas, shown, time);
        }
        const bool isKept = std::exchange(isKept_, false);
        const BlurPlan plan = planBlur(view.defocus * settings.width);
        if (plan.reduction > 1.0) {
            const auto side = [&](int whole) {
                return std::max(1, static_cast<int>(std::ceil(whole / plan.reduction)));
            };
            Canvas &small = resized(small_, side(settings.width), side(settings.height));
            drawScene(small, view, time, lines, false);
            soften(small, plan.spread);
            enlarge(small, canvas);
            finish(canvas, lines, {wholeOf(canvas)});
        } else {
            finish(canvas, lines, drawScene(canvas, view, time, lines, isKept));
            isKept_ = background_.has_value();
        }
        return canvas;
    }

    Canvas &drawNoSignal(const std::string &name, const std::string &reason, const FrameSettings &settings,
                         PictureTime time) {
        check(settings);
        Canvas &canvas = resized(canvas_, settings.width, settings.height);
        drawTestPicture(canvas, name, reason, time);
        jpeg_.changeAll();
        isKept_ = false;
        return canvas;
    }

    std::string compress(Canvas &canvas, int quality) {
        return jpeg_.compress(canvas, quality);
    }

private:
    static Canvas &resized(std::optional<Canvas> &canvas, int width, int height) {
        if (!canvas || canvas->width() != width || canvas->height() != height) {
            canvas.emplace(width, height);
        }
        return *canvas;
    }

    static PixelBox wholeOf(const Canvas &canvas) {
        return {0, 0, canvas.width(), canvas.height()};
    }

    /** Prints the lines into the changed parts of the picture, and announces the changes. */
    void finish(Canvas &canvas, std::vector<StampLine> lines, const std::vector<PixelBox> &changes) {
        for (const StampLine &line : lines) {
            if (overlapsAny(line.box, changes)) {
                drawLine(canvas, line);
            }
        }
        for (const PixelBox &box : changes) {
            jpeg_.change(box);
        }
        lines_ = std::move(lines);
    }

    /**
     * Draws the scene.
     * @param lines   to print into it afterwards
     * @param isKept  the canvas has the picture before
     * @return the parts that were drawn
     */
    std::vector<PixelBox> drawScene(Canvas &canvas, const View &view, PictureTime time,
                                    const std::vector<StampLine> &lines, bool isKept) {
        const Direction direction = {view.fixed ? mount_.bearing : view.bearing,
                                     view.fixed ? mount_.tilt : view.tilt,
                                     view.zoom,
                                     view.fieldOfView,
                                     view.exposure,
                                     canvas.width(),
                                     canvas.height(),
                                     view.inputs,
                                     view.relays};
        Projection projection({mount_.height, direction.bearing, direction.tilt, view.zoom, view.fieldOfView,
                               canvas.width(), canvas.height()});
        const Tone tone(view.exposure);
        Brush brush(canvas.context(), projection, tone);
        Moment moment;
        moment.seconds = std::chrono::duration<double>(time.time_since_epoch()).count();
        moment.inputs = view.inputs;
        moment.relays = view.relays;
        stage_.advance(moment, brush);
        if (last_ == direction) {
            return drawAtRest(canvas, brush, moment, lines, isKept);
        }
        stage_.drawBackground(brush, moment);
        stage_.drawForeground(brush, moment, true);
        background_.reset();
        still_.reset();
        last_ = direction;
        return {wholeOf(canvas)};
    }

    /**
     * Draws the parts of the picture in which something moves. The rest is from the picture before, or from one of a
     * still scene.
     */
    std::vector<PixelBox> drawAtRest(Canvas &canvas, Brush &brush, const Moment &moment,
                                     const std::vector<StampLine> &lines, bool isKept) {
        if (!background_) {
            stage_.drawBackground(brush, moment);
            background_.emplace(canvas.width(), canvas.height()).copy(canvas);
        }
        if (!still_ || stage_.signalStage(moment) != signalStage_) {
            canvas.copy(*background_);
            stage_.drawForeground(brush, moment, false);
            resized(still_, canvas.width(), canvas.height()).copy(canvas);
            signalStage_ = stage_.signalStage(moment);
            isKept = false;
        }
        const std::vector<PixelBox> moving = stage_.movingParts();
        if (!isKept) {
            canvas.copy(*still_);
            drawParts(canvas, brush, moment, disjoint(moving), moving);
            return {wholeOf(canvas)};
        }
        std::vector<PixelBox> changes = withWholeLines(lines, stage_.changedParts());
        drawParts(canvas, brush, moment, changes, moving);
        return changes;
    }

    void drawParts(Canvas &canvas, Brush &brush, const Moment &moment, const std::vector<PixelBox> &parts,
                   const std::vector<PixelBox> &moving) {
        for (const PixelBox &part : parts) {
            if (!overlapsAny(part, moving)) {
                canvas.copy(*still_, part);
                continue;
            }
            canvas.copy(*background_, part);
            brush.clip(part);
            stage_.drawForeground(brush, moment, true);
            brush.unclip();
        }
    }

    /** Adds lines of text to the changes: those that have changed, and those of which a part is drawn anew. */
    std::vector<PixelBox> withWholeLines(std::vector<StampLine> lines, std::vector<PixelBox> changes) const {
        const auto addUnlessIn = [&](const std::vector<StampLine> &these, const std::vector<StampLine> &others) {
            for (std::size_t i = 0; i < these.size(); ++i) {
                if (i >= others.size() || these[i].text != others[i].text) {
                    changes.push_back(these[i].box);
                }
            }
        };
        addUnlessIn(lines, lines_);
        addUnlessIn(lines_, lines);
        for (std::size_t before = lines.size() + 1; before != lines.size();) {
            before = lines.size();
            changes = disjoint(std::move(changes));
            const auto drawn = std::partition(lines.begin(), lines.end(),
                                              [&](const StampLine &line) { return !overlapsAny(line.box, changes); });
            std::transform(drawn, lines.end(), std::back_inserter(changes),
                           [](const StampLine &line) { return line.box; });
            lines.erase(drawn, lines.end());
        }
        return changes;
    }

    Mount mount_;
    Stage stage_;
    std::optional<Canvas> canvas_;
    std::optional<Canvas> small_;      ///< for blurred pictures
    std::optional<Canvas> background_; ///< of the last direction; nothing while the camera turns
    std::optional<Canvas> still_;      ///< the same with everything that stands still
    int signalStage_ = 0;              ///< of still_
    std::optional<Direction> last_;
    bool isKept_ = false;          ///< canvas_ has the picture before, of the last direction and at rest
    std::vector<StampLine> lines_; ///< printed into it
    JpegWriter jpeg_;
};

Picture::Picture(const Scene &scene) : parts_(std::make_unique<Parts>(scene)) {}

Picture::~Picture() = default;

Pixels Picture::draw(const View &view, const FrameSettings &settings, PictureTime time) {
    Canvas &canvas = parts_->draw(view, settings, time);
    return {canvas.width(), canvas.height(), canvas.pixels()};
}

std::string Picture::drawJpeg(const View &view, const FrameSettings &settings, PictureTime time) {
    return parts_->compress(parts_->draw(view, settings, time), settings.quality);
}

std::string Picture::drawNoSignal(const std::string &name, const std::string &reason, const FrameSettings &settings,
                                  PictureTime time) {
    return parts_->compress(parts_->drawNoSignal(name, reason, settings, time), settings.quality);
}

} // namespace panel
