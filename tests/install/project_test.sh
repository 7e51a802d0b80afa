#!/bin/sh
# project_test.sh CMAKE CTEST PROJECT DIRECTORY OPTION...: configures the project in a new directory, builds it and runs
# its tests.
set -eu
cmake=$1 ctest=$2 project=$3 directory=$4
shift 4
rm -rf "$directory"
"$cmake" -G Ninja -S "$project" -B "$directory" "$@"
"$cmake" --build "$directory"
"$ctest" --test-dir "$directory" --output-on-failure --no-tests=error --parallel 3
