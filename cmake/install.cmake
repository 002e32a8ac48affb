# What `cmake --install` puts on a Linux system: the library with its SONAME,
# the public header, a pkg-config file, a CMake package (find_package(FileEncoder)),
# the command-line tool with its man page and bash completion.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(fe_header_dir ${CMAKE_INSTALL_INCLUDEDIR}/fileencoder)
set(fe_cmake_dir ${CMAKE_INSTALL_LIBDIR}/cmake/FileEncoder)

install(TARGETS fileencoder EXPORT FileEncoderTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library NAMELINK_COMPONENT development)
install(FILES
  ${PROJECT_SOURCE_DIR}/encode/engine/include/file_encoder.h
  ${PROJECT_SOURCE_DIR}/encode/engine/include/file_encoder_errors.inc
  DESTINATION ${fe_header_dir} COMPONENT development)

# The prefix is found from the file's own place, so that an installation
# moved elsewhere (a staging root, --prefix at install time) stays usable.
file(RELATIVE_PATH fe_pc_to_prefix /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
string(REGEX REPLACE "/$" "" fe_pc_to_prefix "${fe_pc_to_prefix}")
configure_file(${PROJECT_SOURCE_DIR}/cmake/fileencoder.pc.in ${PROJECT_BINARY_DIR}/fileencoder.pc
  @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/fileencoder.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)

install(EXPORT FileEncoderTargets NAMESPACE FileEncoder:: DESTINATION ${fe_cmake_dir}
  COMPONENT development)
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/FileEncoderConfig.cmake.in
  ${PROJECT_BINARY_DIR}/FileEncoderConfig.cmake INSTALL_DESTINATION ${fe_cmake_dir})
# The major version is the SONAME's: what builds against 12.x runs with any 12.y.
write_basic_package_version_file(${PROJECT_BINARY_DIR}/FileEncoderConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/FileEncoderConfig.cmake
  ${PROJECT_BINARY_DIR}/FileEncoderConfigVersion.cmake
  DESTINATION ${fe_cmake_dir} COMPONENT development)

install(TARGETS fileencoder_tool RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tool)
# Debian keeps manual pages compressed.
set(fe_man_page ${PROJECT_BINARY_DIR}/fileencoder.1.gz)
add_custom_command(OUTPUT ${fe_man_page}
  COMMAND gzip -9n -c ${PROJECT_SOURCE_DIR}/encode/cli/fileencoder.1 > ${fe_man_page}
  DEPENDS ${PROJECT_SOURCE_DIR}/encode/cli/fileencoder.1 VERBATIM)
add_custom_target(fileencoder_man_page ALL DEPENDS ${fe_man_page})
install(FILES ${fe_man_page} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tool)
install(FILES ${PROJECT_SOURCE_DIR}/encode/cli/fileencoder.bash-completion
  DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME fileencoder
  COMPONENT tool)
