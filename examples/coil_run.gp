# A run of a machine of separate coils: three panels over time, each with one or more columns.
#   gnuplot -c coil_run.gp RUN.csv IMAGE.svg TITLE LABEL COLUMNS LABEL COLUMNS LABEL COLUMNS
set datafile separator ","
set terminal svg size 900,640 dynamic font "sans,13" background "white"
set output ARG2
set multiplot layout 3,1 title ARG3
set grid back linetype 1 linecolor rgb "#dddddd"
set key outside right top Left reverse samplen 2
set lmargin 10
set rmargin 18
array label[3] = [ARG4, ARG6, ARG8]
array columns[3] = [ARG5, ARG7, ARG9]
array colour[4] = ["#0072b2", "#d55e00", "#009e73", "#cc79a7"]
do for [panel = 1:3] {
    set ylabel label[panel]
    if (panel == 3) { set xlabel "time, s" } else { unset xlabel }
    plot for [n = 1:words(columns[panel])] ARG1 using "time_s":word(columns[panel], n) with lines lw 1.2 \
        lc rgb colour[n] title word(columns[panel], n) noenhanced
}
unset multiplot
