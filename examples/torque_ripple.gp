# The last two electrical periods of a run of ipm48s8p.toml: phase currents above, torque below.
#   gnuplot -c torque_ripple.gp RUN.csv IMAGE-WITHOUT-ENDING
set datafile separator ","
period = 0.015 # s: 1000 rpm, 4 pole pairs

do for [format in "png svg"] {
    if (format eq "png") { set terminal pngcairo size 1000,620 font "sans,11" } \
    else { set terminal svg size 1000,620 dynamic font "sans,13" background "white" }
    set output ARG2 . "." . format
    set multiplot layout 2,1 title "Interior-magnet machine, 48 slots, 8 poles: 1000 rpm, sinusoidal voltages"
    set xrange [-2 * period * 1000:0]
    set grid back linetype 1 linecolor rgb "#dddddd"
    set key outside right top Left reverse samplen 2
    set lmargin 9
    set rmargin 16
    unset xlabel
    set ylabel "current, A"
    plot ARG1 every 5 using ((column("time_s") - 0.5) * 1000):"i_u_A" with lines lw 1.5 lc rgb "#0072b2" title "phase u", \
         ARG1 every 5 using ((column("time_s") - 0.5) * 1000):"i_v_A" with lines lw 1.5 lc rgb "#d55e00" title "phase v", \
         ARG1 every 5 using ((column("time_s") - 0.5) * 1000):"i_w_A" with lines lw 1.5 lc rgb "#009e73" title "phase w"
    set xlabel "time from the end of the run, ms"
    set ylabel "torque, Nm"
    plot ARG1 every 5 using ((column("time_s") - 0.5) * 1000):"torque_Nm" with lines lw 1.5 lc rgb "#222222" title "torque"
    unset multiplot
    unset output
}
