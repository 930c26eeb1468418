#!/bin/sh
# Builds the reluctance machine, the solenoid and the stepping motor, runs their scenarios and draws them.
#   examples/coil_machines.sh BUILD-FOLDER OUTPUT-FOLDER
set -eu

if [ $# -ne 2 ]; then
    echo "usage: $0 BUILD-FOLDER OUTPUT-FOLDER" >&2
    exit 2
fi
examples=$(dirname "$0")
data=$examples/data
kzb=$1/kzb
out=$2
mkdir -p "$out"

# NAME TITLE and, for each panel of the plot: LABEL COLUMN[:SCALE],COLUMN ...
run() {
    name=$1
    echo
    echo "== $name: $2"
    "$kzb" run "$out/$name.kzb" "$examples/$name.toml" --out "$out/$name.csv"
    if command -v gnuplot > /dev/null; then
        shift
        gnuplot -c "$examples/coil_run.gp" "$out/$name.csv" "$out/$name.svg" "$@"
    fi
}

"$kzb" build sr "$data/srm86/phase_table.csv" --parameters "$data/srm86/parameters.csv" \
    --mutual "$data/srm86/mutual_table.csv" --out "$out/srm86.kzb" --title "8/6 switched reluctance machine"
run srm86 "8/6 switched reluctance machine, 1500 rpm" \
    "current, A" "i_a_A i_b_A i_c_A i_d_A" "torque, Nm" torque_Nm "voltage of phase a, V" v_a_V

"$kzb" build solenoid "$data/solenoid-lift/flux_force_table.csv" --parameters "$data/solenoid-lift/parameters.csv" \
    --position-nodes 77 --current-nodes 57 --out "$out/solenoid-lift.kzb" --title "Lifting solenoid"
run solenoid-lift "Lifting solenoid at 12 V" \
    "current, A" i_coil_A "position, m" displacement_m "force, N" force_N

"$kzb" build stepper --parameters "$data/stepper/parameters.toml" --out "$out/stepper.kzb" \
    --title "Two-phase stepping motor"
run stepper "Stepping motor: twenty full steps" \
    "current, A" "i_a_plus_A i_b_plus_A" "angle, degrees" displacement_deg "torque, Nm" torque_Nm
