# Finds libopenjp2. Defines the target OpenJP2::OpenJP2. The package's own configuration also wants
# its programs, which need not be installed.

find_path(OPENJP2_INCLUDE_DIR openjpeg.h PATH_SUFFIXES openjpeg-2.5)
find_library(OPENJP2_LIBRARY openjp2)
include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(OpenJP2 REQUIRED_VARS OPENJP2_LIBRARY OPENJP2_INCLUDE_DIR)
mark_as_advanced(OPENJP2_INCLUDE_DIR OPENJP2_LIBRARY)

if(OpenJP2_FOUND AND NOT TARGET OpenJP2::OpenJP2)
  add_library(OpenJP2::OpenJP2 UNKNOWN IMPORTED)
  set_target_properties(OpenJP2::OpenJP2 PROPERTIES
      IMPORTED_LOCATION ${OPENJP2_LIBRARY}
      INTERFACE_INCLUDE_DIRECTORIES ${OPENJP2_INCLUDE_DIR})
  if(OPENJP2_LIBRARY MATCHES "\\.a$")
    set_target_properties(OpenJP2::OpenJP2 PROPERTIES INTERFACE_COMPILE_DEFINITIONS OPJ_STATIC)
  endif()
endif()
