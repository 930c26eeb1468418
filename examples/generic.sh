#!/bin/sh
# Builds the generic models from their descriptions, runs their scenarios and draws them.
#   examples/generic.sh BUILD-FOLDER OUTPUT-FOLDER
set -eu

if [ $# -ne 2 ]; then
    echo "usage: $0 BUILD-FOLDER OUTPUT-FOLDER" >&2
    exit 2
fi
examples=$(dirname "$0")
generic=$examples/generic
kzb=$1/kzb
out=$2
mkdir -p "$out"

# MODEL SCENARIO ROWS-PER-POINT TITLE and, for each panel of the plot: LABEL COLUMNS
run() {
    model=$1
    scenario=$2
    every=$3
    shift 3
    echo
    echo "== $model: $1"
    "$kzb" build generic "$generic/$model.model.toml" --out "$out/generic-$model.kzb"
    "$kzb" run "$out/generic-$model.kzb" "$generic/$scenario.toml" --out "$out/generic-$model.csv"
    if command -v gnuplot > /dev/null; then
        awk -v every="$every" 'NR == 1 || (NR - 2) % every == 0' "$out/generic-$model.csv" > "$out/generic-$model.points.csv"
        gnuplot -c "$examples/coil_run.gp" "$out/generic-$model.points.csv" "$out/generic-$model.svg" "$@"
    fi
}

run rlc rlc 1 "Series resonant circuit at 10 V" \
    "current, A" i_L_A "voltage, V" v_u_c_V "source, V" source_supply_V
run coupled-coils coupled-coils 1 "Two coupled coils, the supply switched off at 50 ms" \
    "current, A" "i_first_A i_second_A" "voltage, V" v_u_c_V "flux, Wb" "flux_first_Wb flux_second_Wb"
run solenoid-lift solenoid-lift 1 "Lifting solenoid as a generic model" \
    "current, A" i_coil_A "position, m" displacement_plunger_m "force, N" force_plunger_N
run ipm48s8p-axes ipm48s8p 12 "Interior-magnet machine as a generic model" \
    "current, A" "i_phase_u_A i_phase_v_A i_phase_w_A" "torque, Nm" torque_rotor_Nm \
    "flux, Wb" "flux_phase_u_Wb flux_phase_v_Wb flux_phase_w_Wb"
run ipm48s8p-sets ipm48s8p 12 "Interior-magnet machine as a generic model of a coil set" \
    "current, A" "i_phase_u_A i_phase_v_A i_phase_w_A" "torque, Nm" torque_rotor_Nm \
    "flux, Wb" "flux_phase_u_Wb flux_phase_v_Wb flux_phase_w_Wb"
