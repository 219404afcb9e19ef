#!/usr/bin/env bash
# Static checks: the layering of includes, cppcheck over the sources
# (warnings are errors) and clang-format.
set -euo pipefail
cd "$(dirname "$0")/.."

# The layer check proves that it refuses a wrong include, then checks the tree.
/usr/bin/python3 scripts/check_layers.py --self-test
/usr/bin/python3 scripts/check_layers.py

mapfile -t sources < <(git ls-files -co --exclude-standard -- \
  'common/*.c' 'common/*.cc' 'compare/*.cc' 'hkmatch/*.cc' 'normalise/*.cc' \
  'native/*.cc' 'splitter/*.cc' 'tools/*.cc' 'batch/*.cc')
((${#sources[@]})) || exit 0
cppcheck --quiet --error-exitcode=1 --std=c++20 --language=c++ \
  --enable=warning,performance,portability --inline-suppr \
  --suppress=missingIncludeSystem -I include -I . "${sources[@]}"

# Every C and C++ file follows .clang-format.
git ls-files -co --exclude-standard -- '*.c' '*.cc' '*.h' |
  xargs clang-format --dry-run --Werror
