# A run of an alternating-current machine: phase currents, torque and one more column over time.
#   gnuplot -c machine_run.gp RUN.csv IMAGE.svg TITLE COLUMN LABEL
set datafile separator ","
set terminal svg size 900,640 dynamic font "sans,13" background "white"
set output ARG2
set multiplot layout 3,1 title ARG3
set grid back linetype 1 linecolor rgb "#dddddd"
set key outside right top Left reverse samplen 2
set lmargin 10
set rmargin 16
unset xlabel
set ylabel "current, A"
plot ARG1 using "time_s":"i_u_A" with lines lw 1 lc rgb "#0072b2" title "phase u"
set ylabel "torque, Nm"
plot ARG1 using "time_s":"torque_Nm" with lines lw 1 lc rgb "#222222" title "torque"
set xlabel "time, s"
set ylabel ARG5
plot ARG1 using "time_s":ARG4 with lines lw 1.5 lc rgb "#d55e00" notitle
unset multiplot
