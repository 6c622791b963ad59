// SPDX-License-Identifier: Apache-2.0
/** @file A chart of a few lines, as an SVG file that is readable on light and on dark pages. */
#ifndef QUARNSNMP_BENCH_LINE_CHART_H
#define QUARNSNMP_BENCH_LINE_CHART_H

#include <string>
#include <vector>

namespace bench {

/** One line. */
struct Series {
    std::string name;
    std::vector<double> values; ///< greater than 0, one for each label of the x axis
};

/** What is drawn: a logarithmic y axis over equally spaced labels. Texts have no characters that XML reserves. */
struct LineChart {
    std::string title;
    std::string xTitle;
    std::string yTitle;
    std::vector<std::string> xLabels; ///< at least two
    std::vector<Series> series;       ///< at most two
};

/** Writes a chart. @throws std::runtime_error when the file cannot be written */
void writeSvg(const LineChart &chart, const std::string &path);

} // namespace bench

#endif
