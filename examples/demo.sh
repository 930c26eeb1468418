#!/bin/sh
# Builds the 48-slot, 8-pole interior-magnet machine from its flux map, runs it for half a second and draws the ripple.
#   examples/demo.sh BUILD-FOLDER OUTPUT-FOLDER
set -eu

if [ $# -ne 2 ]; then
    echo "usage: $0 BUILD-FOLDER OUTPUT-FOLDER" >&2
    exit 2
fi
examples=$(dirname "$0")
kzb=$1/kzb
out=$2
mkdir -p "$out"

echo "== Flux map to KZB model"
"$kzb" build pmsm "$examples/data/ipm48s8p/position_map_dq.csv" --out "$out/ipm48s8p.kzb" \
    --application Harmonic --poles 8 --resistance 0.0806 --mirror iq --position-step 2.5 \
    --title "Interior-magnet machine, 48 slots, 8 poles" \
    --info rated_speed=3000

echo
echo "== Half a second at 1000 rpm between sinusoidal voltages"
"$kzb" run "$out/ipm48s8p.kzb" "$examples/ipm48s8p.toml" --out "$out/ipm48s8p.csv"

if ! command -v gnuplot > /dev/null; then
    echo "$0: no plot: gnuplot is not installed" >&2
    exit 0
fi
gnuplot -c "$examples/torque_ripple.gp" "$out/ipm48s8p.csv" "$out/ipm48s8p"
echo
echo "Left in $out: ipm48s8p.kzb, ipm48s8p.csv, ipm48s8p.png, ipm48s8p.svg"
