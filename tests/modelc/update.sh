#!/bin/sh
# Writes what the compiler says and emits today as what is expected: tests/modelc/update.sh PATH-TO-MODELC
# Read the difference before it is kept.
set -eu
modelc=$(realpath "$1")
cd "$(dirname "$0")"
cd refused
for model in *.model; do
    "$modelc" --list "$model" 2> "${model%.model}.errors" && { echo "$model is not refused"; exit 1; }
done
cd ..
rm -rf golden/expected
"$modelc" --out golden/expected golden/Sample.model
find golden/expected -type f -exec mv {} {}.expected \;
"$modelc" --registry ../../vgw/OvsdbDataTypes.model ../../vgw/VgwTypes.model > golden/registrations.txt
