#!/usr/bin/env bash
# usage: long.sh [RANDOM-PRODUCTS]
#
# Compares the library with the model for longer than CI does, in the optimised build, and keeps what
# was compared in long-results.txt beside this script: six minutes with 20,000 products.
set -euo pipefail

folder=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
results=$folder/long-results.txt
cd "$folder/../.."
cmake --preset release >/dev/null
cmake --build --preset release --target vorn_model_tests >/dev/null

export VORN_MODEL_WALK=8 VORN_MODEL_LOG=6 VORN_MODEL_REPLAY=5
export RC_PARAMS="max_success=${1:-20000}"
{
    echo "$(date -u +%F), RC_PARAMS=$RC_PARAMS, walks of $VORN_MODEL_WALK, logged walks of" \
        "$VORN_MODEL_LOG, replays of $VORN_MODEL_REPLAY"
    TIMEFORMAT='%U s of processor time'
    time build/release/tests/model/vorn_model_tests --gtest_brief=1 2>&1
} 2>&1 | tee "$results.new"
mv "$results.new" "$results"
