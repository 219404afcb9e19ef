#!/usr/bin/env bash
# Configures and builds one flavour of the project.
#   scripts/build.sh release   optimised build in build/release
#   scripts/build.sh asan      AddressSanitizer + UndefinedBehaviorSanitizer in build/asan
#   scripts/build.sh tsan      ThreadSanitizer in build/tsan, built by clang
#   scripts/build.sh fuzz      libFuzzer targets (clang, ASan + UBSan) in build/fuzz
set -euo pipefail
cd "$(dirname "$0")/.."
flavour=${1:-release}
case "$flavour" in
  release) args=(-DCMAKE_BUILD_TYPE=RelWithDebInfo) ;;
  asan) args=(-DCMAKE_BUILD_TYPE=Debug -DORLO_SANITIZE=address -DCMAKE_CXX_FLAGS=-O1 -DCMAKE_C_FLAGS=-O1) ;;
  tsan) args=(-DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_BUILD_TYPE=Debug -DORLO_SANITIZE=thread -DCMAKE_CXX_FLAGS=-O1 -DCMAKE_C_FLAGS=-O1) ;;
  fuzz) export CC=clang CXX=clang++
        args=(-DCMAKE_BUILD_TYPE=Debug -DORLO_FUZZ=ON -DORLO_SANITIZE=address -DORLO_BUILD_TESTS=OFF
              -DORLO_BUILD_BENCH=OFF -DCMAKE_CXX_FLAGS=-O1 -DCMAKE_C_FLAGS=-O1) ;;
  *) echo "usage: scripts/build.sh release|asan|tsan|fuzz" >&2; exit 2 ;;
esac
# Every flavour treats compiler warnings as errors; the tsan and fuzz flavours
# are built by clang, the others by g++, so the test command sees both.
cmake -S . -B "build/$flavour" -DORLO_WERROR=ON "${args[@]}" >/dev/null
cmake --build "build/$flavour" -j"$(nproc)"
