#!/usr/bin/env bash
# Configures and builds one preset: build.sh PRESET [TARGET…]
set -eu
cd "$(dirname "$0")/.."

preset=$1
shift
cmake --preset "$preset"
cmake --build --preset "$preset" ${1:+--target "$@"}
