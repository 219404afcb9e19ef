#!/usr/bin/env bash
# Installs the Debian packages the project needs, when any is missing.
# Safe to run again: it does nothing when everything is there.
set -euo pipefail

# Beyond the compilers and test libraries: utf8proc for the input
# normalisation, doxygen for the docs target, help2man for the tools' manual
# pages, CLI11 (header-only) for the tools' command lines, pkg-config,
# dpkg-dev and file for the Debian package and the consumer tests; Debian's
# numpy, pandas, dask, distributed, pytest, setuptools, wheel and venv for
# the Python package, its tests and `pip install .`.
packages=(cmake make g++ clang libclang-rt-14-dev libgtest-dev libgmock-dev
          libbenchmark-dev libutf8proc-dev openjdk-17-jdk-headless cppcheck
          python3 doxygen help2man pkg-config dpkg-dev file libcli11-dev
          python3-numpy python3-pandas python3-dask python3-distributed
          python3-pytest python3-setuptools python3-wheel python3-venv)
missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed'; then
    missing+=("$p")
  fi
done
if ((${#missing[@]})); then
  echo "setup: installing ${missing[*]}" >&2
  sudo_cmd=()
  [[ $(id -u) -ne 0 ]] && sudo_cmd=(sudo)
  "${sudo_cmd[@]}" apt-get update -qq
  DEBIAN_FRONTEND=noninteractive "${sudo_cmd[@]}" apt-get install -y -qq "${missing[@]}"
fi
