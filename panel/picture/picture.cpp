// SPDX-License-Identifier: Apache-2.0
#include "picture.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <stdexcept>
#include <tuple>
#include <utility>

#include "blur.h"
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
        const BlurPlan plan = planBlur(view.defocus * settings.width);
        if (plan.reduction > 1.0) {
            const auto side = [&](int whole) {
                return std::max(1, static_cast<int>(std::ceil(whole / plan.reduction)));
            };
            Canvas &small = resized(small_, side(settings.width), side(settings.height));
            drawScene(small, view, time);
            soften(small, plan.spread);
            enlarge(small, canvas);
        } else {
            drawScene(canvas, view, time);
        }
        if (settings.stamp) {
            View shown = view;
            shown.bearing = view.fixed ? mount_.bearing : view.bearing;
            shown.tilt = view.fixed ? mount_.tilt : view.tilt;
            drawStamp(canvas, shown, time);
        }
        return canvas;
    }

    Canvas &drawNoSignal(const std::string &name, const std::string &reason, const FrameSettings &settings,
                         PictureTime time) {
        check(settings);
        Canvas &canvas = resized(canvas_, settings.width, settings.height);
        drawTestPicture(canvas, name, reason, time);
        return canvas;
    }

private:
    static Canvas &resized(std::optional<Canvas> &canvas, int width, int height) {
        if (!canvas || canvas->width() != width || canvas->height() != height) {
            canvas.emplace(width, height);
        }
        return *canvas;
    }

    void drawScene(Canvas &canvas, const View &view, PictureTime time) {
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
            drawAtRest(canvas, brush, moment);
        } else {
            stage_.drawBackground(brush, moment);
            stage_.drawForeground(brush, moment, true);
            background_.reset();
            still_.reset();
            last_ = direction;
        }
    }

    /** Draws the parts of the picture in which something moves, and copies the rest from the picture of a still scene.
     */
    void drawAtRest(Canvas &canvas, Brush &brush, const Moment &moment) {
        if (!background_) {
            stage_.drawBackground(brush, moment);
            background_.emplace(canvas.width(), canvas.height()).copy(canvas);
        }
        if (!still_ || stage_.signalStage(moment) != signalStage_) {
            canvas.copy(*background_);
            stage_.drawForeground(brush, moment, false);
            resized(still_, canvas.width(), canvas.height()).copy(canvas);
            signalStage_ = stage_.signalStage(moment);
        }
        canvas.copy(*still_);
        for (const PixelBox &box : stage_.movingParts()) {
            canvas.copy(*background_, box);
            brush.clip(box);
            stage_.drawForeground(brush, moment, true);
            brush.unclip();
        }
    }

    Mount mount_;
    Stage stage_;
    std::optional<Canvas> canvas_;
    std::optional<Canvas> small_;      ///< for blurred pictures
    std::optional<Canvas> background_; ///< of the last direction; nothing while the camera turns
    std::optional<Canvas> still_;      ///< the same with everything that stands still
    int signalStage_ = 0;              ///< of still_
    std::optional<Direction> last_;
};

Picture::Picture(const Scene &scene) : parts_(std::make_unique<Parts>(scene)) {}

Picture::~Picture() = default;

Pixels Picture::draw(const View &view, const FrameSettings &settings, PictureTime time) {
    Canvas &canvas = parts_->draw(view, settings, time);
    return {canvas.width(), canvas.height(), canvas.pixels()};
}

std::string Picture::drawJpeg(const View &view, const FrameSettings &settings, PictureTime time) {
    return compressJpeg(parts_->draw(view, settings, time), settings.quality);
}

std::string Picture::drawNoSignal(const std::string &name, const std::string &reason, const FrameSettings &settings,
                                  PictureTime time) {
    return compressJpeg(parts_->drawNoSignal(name, reason, settings, time), settings.quality);
}

} // namespace panel
