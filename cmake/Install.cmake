# Installing: the module, its header, the two hosts, and what lets a host find them by
# find_package(Rastrel) or by pkg-config.

include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/Rastrel)
install(TARGETS rastrel EXPORT RastrelTargets
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(FILES include/rastrel.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT RastrelTargets NAMESPACE Rastrel:: DESTINATION ${package_dir})

configure_package_config_file(cmake/RastrelConfig.cmake.in RastrelConfig.cmake
    INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(RastrelConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_BINARY_DIR}/RastrelConfig.cmake
              ${CMAKE_BINARY_DIR}/RastrelConfigVersion.cmake
        DESTINATION ${package_dir})

configure_file(cmake/rastrel.pc.in rastrel.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/rastrel.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

if(WIN32)
  # For tool chains that make import libraries of their own.
  install(FILES ${CMAKE_BINARY_DIR}/src/rastrel.def DESTINATION ${CMAKE_INSTALL_LIBDIR})
endif()
if(RASTREL_TOOLS)
  set_target_properties(rastrel_cli PROPERTIES INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")
  install(TARGETS rastrel_cli RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  if(WIN32)
    install(TARGETS rastrel_view RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  endif()
endif()
