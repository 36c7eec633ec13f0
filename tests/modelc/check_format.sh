#!/bin/sh
# check_format.sh MODELC CLANG-FORMAT STYLE-FILE WORK-FOLDER -I IMPORTS MODEL...
# What the compiler emits is in the house's format as it comes out.
set -eu
modelc=$1 format=$2 style=$3 work=$4
shift 4
rm -rf "$work"
mkdir -p "$work"
cp "$style" "$work/.clang-format"
"$modelc" --out "$work" "$@"
find "$work" -name '*.h' -o -name '*.cc' | xargs "$format" --dry-run -Werror
echo "$(find "$work" -name '*.h' -o -name '*.cc' | wc -l) files in format"
