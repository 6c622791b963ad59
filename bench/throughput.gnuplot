# SPDX-License-Identifier: Apache-2.0
# Draws the throughput with a slow camera: gnuplot -c bench/throughput.gnuplot DATA.tsv CHART.svg
set terminal svg size 760,420 font "sans-serif,13" background "#ffffff" name "throughput"
set output ARG2
set datafile separator "\t"

set title "Throughput against the duration of a call to the camera" font ",16"
set xlabel "duration of a call (ms)"
set ylabel "requests per second"
set logscale y
set yrange [5:*]
set format y "%.0f"
set grid ytics linecolor "#d0d0d0" linewidth 1
set border 3 linecolor "#808080"
set tics nomirror textcolor "#404040"
set mytics 1
set offsets 0.4, 0.5, 0, 0
set key top right Left reverse samplen 3 spacing 1.3

# The two lines coincide, so the first one is drawn wide enough to show behind the second.
plot ARG1 using 0:2:xticlabels($1 == 0 ? "no delay" : sprintf("%g", $1)) title "object that needs a call" \
         with linespoints linewidth 9 linecolor "#f0a875" pointtype 7 pointsize 1.1, \
     ARG1 using 0:3 title "cached object, requested at the same time" \
         with linespoints linewidth 2 linecolor "#1f6fc0" pointtype 7 pointsize 0.6, \
     ARG1 using 0:3:(sprintf("%.0f", $3)) notitle with labels left offset 0.8, 0.6 textcolor "#404040"
