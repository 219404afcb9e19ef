# Installing the library for C, C++ and Java users, its reference
# documentation, and the Debian package.
#
#   cmake --install <build> --prefix <dir>   lib/, include/orloHKGeocoder/,
#       bin/, share/java/, share/orloHKGeocoder/sample/, share/man/man1/,
#       lib/cmake/orloHKGeocoder/ (find_package) and lib/pkgconfig/
#   cmake --build <build> --target docs      HTML in <build>/docs/c, docs/java
#   cpack -G DEB --config <build>/CPackConfig.cmake
include(CMakePackageConfigHelpers)

set(ORLO_INSTALL_CMAKEDIR ${CMAKE_INSTALL_LIBDIR}/cmake/orloHKGeocoder)

install(TARGETS orloHKGeocoder EXPORT orloHKGeocoderTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
file(GLOB ORLO_PUBLIC_HEADERS CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/include/*.h)
install(FILES ${ORLO_PUBLIC_HEADERS}
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/orloHKGeocoder)

# The CMake package: orlo::hkgeocoder and orloHKGeocoder_SAMPLE_DB_DIR. The
# files locate the prefix from where they lie, so an installed tree can be
# moved (cmake --install --prefix picks the prefix after configuring).
install(EXPORT orloHKGeocoderTargets NAMESPACE orlo::
        DESTINATION ${ORLO_INSTALL_CMAKEDIR})
configure_package_config_file(
  ${PROJECT_SOURCE_DIR}/cmake/orloHKGeocoderConfig.cmake.in
  ${PROJECT_BINARY_DIR}/orloHKGeocoderConfig.cmake
  INSTALL_DESTINATION ${ORLO_INSTALL_CMAKEDIR}
  PATH_VARS ORLO_INSTALL_SAMPLE_DB)
# Until version 1.0 the interface may change between minor versions.
write_basic_package_version_file(
  ${PROJECT_BINARY_DIR}/orloHKGeocoderConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/orloHKGeocoderConfig.cmake
              ${PROJECT_BINARY_DIR}/orloHKGeocoderConfigVersion.cmake
        DESTINATION ${ORLO_INSTALL_CMAKEDIR})

# The pkg-config file finds the prefix from its own folder for the same
# reason.
file(RELATIVE_PATH ORLO_PC_TO_PREFIX ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig
     ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" ORLO_PC_TO_PREFIX "${ORLO_PC_TO_PREFIX}")
configure_file(${PROJECT_SOURCE_DIR}/cmake/orloHKGeocoder.pc.in
               ${PROJECT_BINARY_DIR}/orloHKGeocoder.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/orloHKGeocoder.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# ---- reference documentation ----------------------------------------------
# `docs` writes the C headers' documentation with Doxygen and the Java API
# documentation with javadoc. Every public declaration needs its comment: with
# ORLO_WERROR a declaration without one fails the target.
find_package(Doxygen QUIET)
if(DOXYGEN_FOUND)
  set(DOXYGEN_PROJECT_NAME orloHKGeocoder)
  set(DOXYGEN_PROJECT_BRIEF "Hong Kong postal address matching: the C interface")
  set(DOXYGEN_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/docs)
  set(DOXYGEN_HTML_OUTPUT c)
  set(DOXYGEN_GENERATE_LATEX NO)
  set(DOXYGEN_HAVE_DOT NO)
  set(DOXYGEN_OPTIMIZE_OUTPUT_FOR_C YES)
  set(DOXYGEN_FULL_PATH_NAMES NO)
  set(DOXYGEN_SORT_MEMBER_DOCS NO)
  # The headers are read as a C compiler other than GCC reads them: ORLO_API
  # expands to nothing and the code tables to their enumerators; the
  # compile-time layout checks are not part of the interface.
  set(DOXYGEN_MACRO_EXPANSION YES)
  set(DOXYGEN_EXCLUDE_SYMBOLS _Static_assert)
  set(DOXYGEN_WARN_IF_UNDOCUMENTED YES)
  set(DOXYGEN_WARN_IF_DOC_ERROR YES)
  set(DOXYGEN_WARN_NO_PARAMDOC NO)
  set(DOXYGEN_QUIET YES)
  if(ORLO_WERROR)
    set(DOXYGEN_WARN_AS_ERROR FAIL_ON_WARNINGS)
  endif()
  doxygen_add_docs(orlo_c_docs ${PROJECT_SOURCE_DIR}/include
                   COMMENT "Writing the C API documentation")
else()
  message(STATUS "Doxygen not found: the docs target writes the Java part only")
endif()
add_custom_target(docs)
foreach(part orlo_c_docs orlo_java_docs)
  if(TARGET ${part})
    add_dependencies(docs ${part})
  endif()
endforeach()

# ---- Debian package -------------------------------------------------------
# One package with everything the install puts down, under /usr. The
# libraries it needs (libc6, libstdc++6, libgcc-s1) are read from the
# binaries by dpkg-shlibdeps; a Java runtime is recommended for the jar.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME orlohkgeocoder)
set(CPACK_PACKAGE_VENDOR "orloHKGeocoder developers")
set(CPACK_PACKAGE_CONTACT "orloHKGeocoder developers <orlohkgeocoder@example.org>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY
    "Hong Kong postal address matching library, tools and Java binding")
set(CPACK_PACKAGE_DESCRIPTION
    "liborloHKGeocoder matches Hong Kong postal addresses against a reference database and compares street, spelling, string and business names. The package holds the shared library with its C headers, CMake and pkg-config files, the command-line tools hkdb, hkgeocode, hkaddrgen and hkpremise with their manual pages, the Java jar (which carries the library) and a sample reference database.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS
    "default-jre-headless (>= 2:1.17) | java17-runtime-headless")
include(CPack)
