#!/usr/bin/env bash
# Makes the Debian package of a build tree, unpacks it into a scratch root
# and checks it: every installed file is one that the package should hold
# and each expected file is there, the library's SONAME, and the declared
# runtime dependencies.
#   tests/consumer/check_deb.sh BUILD_DIR SCRATCH_DIR
set -euo pipefail
build=$1
scratch=$2
rm -rf "$scratch"
mkdir -p "$scratch"
quietly() { "$@" > "$scratch/step.log" 2>&1 || { cat "$scratch/step.log"; return 1; }; }
quietly cpack -G DEB --config "$build/CPackConfig.cmake" -B "$scratch"
debs=("$scratch"/*.deb)
deb=${debs[0]}
dpkg -x "$deb" "$scratch/root"

expected=(
  usr/bin/hkaddrgen usr/bin/hkdb usr/bin/hkgeocode usr/bin/hkpremise
  'usr/include/orloHKGeocoder/orlo_*.h'
  usr/lib/liborloHKGeocoder.so usr/lib/liborloHKGeocoder.so.0
  'usr/lib/liborloHKGeocoder.so.0.[0-9]*'
  usr/lib/cmake/orloHKGeocoder/orloHKGeocoderConfig.cmake
  usr/lib/cmake/orloHKGeocoder/orloHKGeocoderConfigVersion.cmake
  'usr/lib/cmake/orloHKGeocoder/orloHKGeocoderTargets*.cmake'
  usr/lib/pkgconfig/orloHKGeocoder.pc
  'usr/lib/orlo_hk/*.py' usr/lib/python3/dist-packages/orlo_hk.pth
  usr/share/java/orloHKGeocoder.jar usr/share/java/orloHKGeocoder-sources.jar
  usr/share/java/orloHKGeocoder-javadoc.jar
  usr/share/man/man1/hkaddrgen.1 usr/share/man/man1/hkdb.1
  usr/share/man/man1/hkgeocode.1 usr/share/man/man1/hkpremise.1
  usr/share/orloHKGeocoder/sample/LEVEL1 usr/share/orloHKGeocoder/sample/LEVEL2
  usr/share/orloHKGeocoder/sample/BASEDATA
  usr/share/orloHKGeocoder/sample/reference.csv
  usr/share/orloHKGeocoder/sample/addresses.csv
)
faults=0
mapfile -t files < <(cd "$scratch/root" && find . ! -type d | sed 's|^\./||' | sort)
for f in "${files[@]}"; do
  known=0
  for pattern in "${expected[@]}"; do
    # shellcheck disable=SC2053  # the pattern is a glob on purpose
    [[ $f == $pattern ]] && known=1 && break
  done
  ((known)) || { echo "unexpected file in the package: $f"; faults=1; }
done
for pattern in "${expected[@]}"; do
  found=0
  for f in "${files[@]}"; do
    # shellcheck disable=SC2053
    [[ $f == $pattern ]] && found=1 && break
  done
  ((found)) || { echo "missing from the package: $pattern"; faults=1; }
done

soname=$(readelf -d "$scratch/root/usr/lib/liborloHKGeocoder.so" | sed -n 's/.*(SONAME).*\[\(.*\)\]/\1/p')
[[ $soname == liborloHKGeocoder.so.0 ]] || { echo "SONAME is '$soname'"; faults=1; }
# The Python package is found through the .pth file, which names the
# library's folder as it is once installed.
[[ $(cat "$scratch/root/usr/lib/python3/dist-packages/orlo_hk.pth") == /usr/lib ]] ||
  { echo "orlo_hk.pth does not name /usr/lib"; faults=1; }
depends=$(dpkg-deb --field "$deb" Depends)
for lib in libc6 libstdc++6; do
  [[ $depends == *"$lib "* || $depends == *"$lib," || $depends == *"$lib" ]] ||
    { echo "Depends lacks $lib: $depends"; faults=1; }
done
((faults == 0)) && echo "package ok: ${#files[@]} files, Depends: $depends"
exit "$faults"
