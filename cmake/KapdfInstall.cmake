# What `cmake --install` and CPack put where. Everything is found from its own place, so the whole may be moved.
#   Windows: bin/ holds the module, the host program and fonts/. Elsewhere they stand in lib/kapdf/, and bin/kapdf is a
#   link to the program.
include(CMakePackageConfigHelpers)

if(WIN32)
  set(KAPDF_MODULE_DIR bin)
else()
  set(KAPDF_MODULE_DIR lib/kapdf)
endif()
set(KAPDF_MODULE_NAME kaPDF${CMAKE_SHARED_LIBRARY_SUFFIX})
set(package_dir lib/cmake/kaPDF)

install(TARGETS kaPDF RUNTIME DESTINATION ${KAPDF_MODULE_DIR} LIBRARY DESTINATION ${KAPDF_MODULE_DIR})
install(DIRECTORY ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/fonts DESTINATION ${KAPDF_MODULE_DIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/kapdf DESTINATION include)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs/ DESTINATION share/doc/kapdf)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/samples/ DESTINATION share/doc/kapdf/samples
        PATTERN CMakeLists.txt EXCLUDE)
if(KAPDF_TOOL)
  install(TARGETS kapdf RUNTIME DESTINATION ${KAPDF_MODULE_DIR})
  if(NOT WIN32)
    set(link ${CMAKE_BINARY_DIR}/install/kapdf)
    file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/install)
    file(CREATE_LINK ../${KAPDF_MODULE_DIR}/kapdf ${link} SYMBOLIC)
    install(FILES ${link} DESTINATION bin)
  endif()
endif()

configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/kaPDFConfig.cmake.in ${CMAKE_BINARY_DIR}/install/kaPDFConfig.cmake
                              INSTALL_DESTINATION ${package_dir} PATH_VARS KAPDF_MODULE_DIR
                              NO_CHECK_REQUIRED_COMPONENTS_MACRO)
write_basic_package_version_file(${CMAKE_BINARY_DIR}/install/kaPDFConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/install/kaPDFConfig.cmake ${CMAKE_BINARY_DIR}/install/kaPDFConfigVersion.cmake
        DESTINATION ${package_dir})

set(CPACK_PACKAGE_NAME kapdf)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_VENDOR "kaPDF developers")
set(CPACK_PACKAGE_CONTACT "kaPDF developers <kapdf@example.org>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "PDF import and export for drawing programs")
set(CPACK_STRIP_FILES ON)
if(WIN32)
  set(CPACK_GENERATOR ZIP)
  set(CPACK_SYSTEM_NAME windows-x64)
else()
  set(CPACK_GENERATOR DEB)
  set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
  set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
  set(CPACK_DEBIAN_PACKAGE_SECTION graphics)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
endif()
include(CPack)
