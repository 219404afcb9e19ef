#!/usr/bin/env bash
# Static checks: cppcheck over the sources (warnings are errors).
set -euo pipefail
cd "$(dirname "$0")/.."
mapfile -t sources < <(git ls-files -co --exclude-standard -- \
  'common/*.c' 'common/*.cc' 'compare/*.cc' 'hkmatch/*.cc' 'native/*.cc' 'tools/*.cc')
((${#sources[@]})) || exit 0
cppcheck --quiet --error-exitcode=1 --std=c++20 --language=c++ \
  --enable=warning,performance,portability --inline-suppr \
  --suppress=missingIncludeSystem -I include -I . "${sources[@]}"

# Every C and C++ file follows .clang-format.
git ls-files -co --exclude-standard -- '*.c' '*.cc' '*.h' |
  xargs clang-format --dry-run --Werror
