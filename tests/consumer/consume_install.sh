#!/usr/bin/env bash
# Installs a build tree into a scratch prefix and uses the installed files
# the way a new user would, with nothing from the build or source tree on
# any search path: a C program through pkg-config, a C++ project through
# find_package and a Java program with only the installed jar on its class
# path (and no library on java.library.path), and the Python package from
# the .pth file the install writes. Each geocodes a few sample
# addresses and checks the results.
#   tests/consumer/consume_install.sh BUILD_DIR SCRATCH_DIR
# CC and CXX name the compilers (default cc, c++); JAVAC and JAVA the JDK's
# tools (without them, as in a build without Java, the Java part is left out).
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
build=$1
scratch=$2
rm -rf "$scratch"
mkdir -p "$scratch"
prefix=$scratch/prefix
quietly() { "$@" > "$scratch/step.log" 2>&1 || { cat "$scratch/step.log"; return 1; }; }
quietly cmake --install "$build" --prefix "$prefix"

echo "== C program through pkg-config"
PKG_CONFIG_LIBDIR=$(dirname "$(find "$prefix" -name orloHKGeocoder.pc)")
export PKG_CONFIG_LIBDIR PKG_CONFIG_PATH=
read -r -a flags <<< "$(pkg-config --cflags --libs orloHKGeocoder)"
libdir=$(pkg-config --variable=libdir orloHKGeocoder)
sampledb=$(pkg-config --variable=sampledb orloHKGeocoder)
"${CC:-cc}" -std=c11 -Wall -Wextra -Werror "$here/geocode.c" "${flags[@]}" \
  -Wl,-rpath,"$libdir" -o "$scratch/geocode_c"
"$scratch/geocode_c" "$sampledb"

echo "== C++ project through find_package"
quietly cmake -S "$here/cxx" -B "$scratch/cxx" -DCMAKE_PREFIX_PATH="$prefix" \
  -DCMAKE_CXX_COMPILER="${CXX:-c++}"
quietly cmake --build "$scratch/cxx"
"$scratch/cxx/geocode_cxx"

echo "== Python package through its .pth file"
# The site folder is read as the interpreter reads its own at start-up; the
# package must then load the installed library beside itself.
site=$(dirname "$(find "$prefix" -name orlo_hk.pth)")
env -u ORLO_HK_LIBRARY -u PYTHONPATH -u LD_LIBRARY_PATH /usr/bin/python3 -c "
import site, sys
site.addsitedir(sys.argv[1])
import orlo_hk
from orlo_hk import _native
assert _native.library()._name.startswith(sys.argv[2]), _native.library()._name
with orlo_hk.Geocoder(sys.argv[3]) as g:
    r = g.geocode(premno='22', street='Castle Peak Road', district='Sham Shui Po')
assert (r.return_code, r.ref_code, r.ref_id) == ('1', 'SSP', '12831'), r
print('python:', r.line1, '/', r.ref_code, r.ref_id)
" "$site" "$prefix/" "$sampledb"

if [[ -z ${JAVAC:-} || -z ${JAVA:-} ]]; then
  echo "no JDK given: the Java program is left out"
  exit 0
fi
echo "== Java program with only the installed jar"
jar=$prefix/share/java/orloHKGeocoder.jar
mkdir -p "$scratch/java" "$scratch/no-library"
"$JAVAC" -d "$scratch/java" -cp "$jar" "$here/GeocodeSample.java"
"$JAVA" -Djava.library.path="$scratch/no-library" -cp "$jar:$scratch/java" \
  GeocodeSample "$sampledb"
echo "all consumers ok"
