#!/bin/sh
# Builds the induction and wound-field machines from their published data, runs their scenarios and draws them.
#   examples/machines.sh BUILD-FOLDER OUTPUT-FOLDER
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

# NAME TITLE COLUMN LABEL
run() {
    echo
    echo "== $1: $2"
    "$kzb" run "$out/$1.kzb" "$examples/$1.toml" --out "$out/$1.csv"
    if command -v gnuplot > /dev/null; then
        gnuplot -c "$examples/machine_run.gp" "$out/$1.csv" "$out/$1.svg" "$2" "$3" "$4"
    fi
}

"$kzb" build im "$data/im-2k2/parameters.csv" --circuit inverse-gamma --out "$out/im-2k2.kzb" \
    --title "Induction machine, 2.2 kW"
run im-2k2 "Induction machine, 2.2 kW: start and rated load" speed_rpm "speed, 1/min"

"$kzb" build im "$data/im-1k1/parameters.csv" --application InductionParam \
    --parameter frequency=50 --parameter phase_voltage_rms=198 --out "$out/im-1k1.kzb" --title "Small induction machine"
run im-1k1 "Small induction machine: connected at 5 % slip" secondary_copper_loss_W "rotor loss, W"

"$kzb" build im "$data/im-8pole/parameters.csv" --saturation "$data/im-8pole/magnetizing_curve.csv" \
    --out "$out/im-8pole.kzb" --title "Induction machine, 8 poles"
run im-8pole "Induction machine, 8 poles: connected at 3 % slip" iron_loss_W "iron loss, W"

"$kzb" build im "$data/im-traction/parameters.csv" --saturation "$data/im-traction/magnetizing_inductance.csv" \
    --parameter r1=R_1_at_150C --parameter r2=R_2_at_200C_referred \
    --parameter frequency=60 --parameter phase_voltage_rms=600 --current-nodes 161 \
    --base-primary-temperature 423.15 --base-secondary-temperature 473.15 \
    --operating-point "$data/im-traction/published_operating_point.csv" \
    --out "$out/im-traction.kzb" --title "Induction machine, railway traction"
run im-traction "Traction machine: connected at its published operating point" secondary_copper_loss_W "rotor loss, W"

"$kzb" build wfsm "$data/eesm-linear/parameters.csv" --out "$out/eesm-linear.kzb" \
    --title "Wound-field traction machine, constant inductances"
run eesm-linear "Wound-field machine, constant inductances: step of the field voltage" i_f_A "field current, A"

"$kzb" build wfsm "$data/eesm-6pole/parameters.csv" --map "$data/eesm-6pole/flux_map.csv" --out "$out/eesm-6pole.kzb" \
    --title "Wound-field machine, 6 poles"
run eesm-6pole "Wound-field machine, 6 poles: step of the field voltage" i_f_A "field current, A"
