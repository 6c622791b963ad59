// SPDX-License-Identifier: Apache-2.0
#include "line_chart.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <iomanip>
#include <ostream>
#include <stdexcept>

namespace bench {

namespace {

constexpr double kWidth = 720;
constexpr double kHeight = 400;
constexpr double kLeft = 80;
constexpr double kRight = kWidth - 20;
constexpr double kTop = 70;
constexpr double kBottom = kHeight - 60;

// Colours that stand out from white and from black alike; the texts take that of the page's scheme. The first line is
// broad, so that it shows below a second one that runs along it.
constexpr const char *kStyle = R"(<style>
  text { font: 13px sans-serif; fill: #222; }
  .title { font-size: 15px; font-weight: bold; }
  .grid { stroke: #8886; }
  .axis { stroke: #888; }
  .line { fill: none; }
  .s0 { stroke: #e8965f; } circle.s0, rect.s0 { fill: #e8965f; }
  .s1 { stroke: #2f7fd1; } circle.s1, rect.s1 { fill: #2f7fd1; }
  .line.s0 { stroke-width: 8; } .line.s1 { stroke-width: 2.5; }
  @media (prefers-color-scheme: dark) { text { fill: #ddd; } }
</style>
)";

/** Where values lie on the page. The y axis runs from one power of ten to another. */
class Scale {
public:
    explicit Scale(const LineChart &chart) : columns(chart.xLabels.size()) {
        double least = chart.series.at(0).values.at(0);
        double most = least;
        for (const Series &series : chart.series) {
            const auto [low, high] = std::minmax_element(series.values.begin(), series.values.end());
            least = std::min(least, *low);
            most = std::max(most, *high);
        }
        firstPower = static_cast<int>(std::floor(std::log10(least)));
        lastPower = std::max(firstPower + 1, static_cast<int>(std::ceil(std::log10(most))));
    }

    double x(std::size_t column) const {
        constexpr double kMargin = 30;
        const double width = kRight - kLeft - 2 * kMargin;
        return kLeft + kMargin + width * static_cast<double>(column) / static_cast<double>(columns - 1);
    }

    double y(double value) const {
        return kBottom - (kBottom - kTop) * (std::log10(value) - firstPower) / (lastPower - firstPower);
    }

    int firstPower = 0;
    int lastPower = 0;

private:
    std::size_t columns;
};

void drawText(std::ostream &out, double x, double y, const char *attributes, const std::string &text) {
    out << "<text x=\"" << x << "\" y=\"" << y << "\" " << attributes << ">" << text << "</text>\n";
}

void drawAxes(std::ostream &out, const LineChart &chart, const Scale &scale) {
    for (int power = scale.firstPower; power <= scale.lastPower; ++power) {
        const double value = std::pow(10, power);
        const double y = scale.y(value);
        out << "<line class=\"grid\" x1=\"" << kLeft << "\" y1=\"" << y << "\" x2=\"" << kRight << "\" y2=\"" << y
            << "\"/>\n";
        drawText(out, kLeft - 8, y + 4, "text-anchor=\"end\"", std::to_string(std::lround(value)));
    }
    for (std::size_t i = 0; i < chart.xLabels.size(); ++i) {
        drawText(out, scale.x(i), kBottom + 20, "text-anchor=\"middle\"", chart.xLabels[i]);
    }
    out << "<path class=\"axis\" fill=\"none\" d=\"M" << kLeft << " " << kTop << "V" << kBottom << "H" << kRight
        << "\"/>\n";
    drawText(out, (kLeft + kRight) / 2, kHeight - 15, "text-anchor=\"middle\"", chart.xTitle);
    drawText(out, -(kTop + kBottom) / 2, 18, "text-anchor=\"middle\" transform=\"rotate(-90)\"", chart.yTitle);
}

void drawSeries(std::ostream &out, const LineChart &chart, const Scale &scale, std::size_t number) {
    constexpr double kLegendStep = 260;
    const Series &series = chart.series[number];
    const std::string style = "s" + std::to_string(number);
    out << "<polyline class=\"line " << style << "\" points=\"";
    for (std::size_t i = 0; i < series.values.size(); ++i) {
        out << scale.x(i) << "," << scale.y(series.values[i]) << " ";
    }
    out << "\"/>\n";
    for (std::size_t i = 0; i < series.values.size(); ++i) {
        out << "<circle class=\"" << style << "\" cx=\"" << scale.x(i) << "\" cy=\"" << scale.y(series.values[i])
            << "\" r=\"" << (number == 0 ? 7 : 4) << "\"><title>" << series.values[i] << "</title></circle>\n";
    }
    const double x = kLeft + kLegendStep * static_cast<double>(number);
    out << "<rect class=\"" << style << "\" x=\"" << x << "\" y=\"42\" width=\"12\" height=\"12\"/>\n";
    drawText(out, x + 18, 53, "", series.name);
}

} // namespace

void writeSvg(const LineChart &chart, const std::string &path) {
    const Scale scale(chart);
    std::ofstream out(path);
    out << std::fixed << std::setprecision(1) << "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 " << kWidth
        << " " << kHeight << "\" role=\"img\">\n<title>" << chart.title << "</title>\n"
        << kStyle;
    drawText(out, kLeft, 24, "class=\"title\"", chart.title);
    drawAxes(out, chart, scale);
    for (std::size_t i = 0; i < chart.series.size(); ++i) {
        drawSeries(out, chart, scale, i);
    }
    out << "</svg>\n";
    if (!out.flush()) {
        throw std::runtime_error(path + " cannot be written");
    }
}

} // namespace bench
