# The packages that cpack makes: .deb and .rpm by component, .tar.gz with everything.
set(CPACK_GENERATOR DEB RPM TGZ)
set(CPACK_PACKAGE_VENDOR "the lltwrapper authors")
set(CPACK_PACKAGE_CONTACT "The lltwrapper authors <authors@lltwrapper.invalid>")
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
set(CPACK_STRIP_FILES ON)
set(CPACK_SOURCE_IGNORE_FILES "/build/;/\\\\.git/")
set(CPACK_PROJECT_CONFIG_FILE ${CMAKE_CURRENT_LIST_DIR}/components.cmake)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(about "lltwrapper stands in front of every compiler, linker and archiver command of a
build and has the code count what runs; lltcov reports it as pages, lcov
tracefiles, JSON and Cobertura.")

# --- Debian
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION devel)
set(CPACK_DEBIAN_LLTWRAPPER_PACKAGE_NAME lltwrapper)
set(CPACK_DEBIAN_LLTWRAPPER_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_LLTWRAPPER_PACKAGE_RECOMMENDS "gcc | clang, binutils, lcov")
set(CPACK_DEBIAN_LLTWRAPPER_DESCRIPTION "${about}")
set(CPACK_DEBIAN_DEV_PACKAGE_NAME lltwrapper-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS "lltwrapper (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_DEV_DESCRIPTION "Files for the build systems of projects that use lltwrapper:
the CMake package, the .pc file and the header of the coverage runtime.")

file(READ ${PROJECT_SOURCE_DIR}/LICENSE LICENSE_TEXT)
string(REGEX REPLACE "^[^\n]*\n\n[^\n]*\n\n" "" LICENSE_TEXT "${LICENSE_TEXT}")
string(REGEX REPLACE "\n$" "" LICENSE_TEXT "${LICENSE_TEXT}")
string(REPLACE "\n\n" "\n.\n" LICENSE_TEXT "${LICENSE_TEXT}")
string(REPLACE "\n" "\n " LICENSE_TEXT " ${LICENSE_TEXT}")
string(TIMESTAMP LLT_SOURCE_DATE "%a, %d %b %Y %H:%M:%S +0000" UTC)
configure_file(debian/copyright.in debian/copyright @ONLY)
configure_file(debian/changelog.in debian/changelog @ONLY)
set(changelog ${CMAKE_CURRENT_BINARY_DIR}/debian/changelog.gz)
execute_process(COMMAND gzip -9nc ${CMAKE_CURRENT_BINARY_DIR}/debian/changelog OUTPUT_FILE ${changelog})
foreach(package lltwrapper lltwrapper-dev)
  string(REPLACE lltwrapper debian component ${package})
  install(FILES ${CMAKE_CURRENT_BINARY_DIR}/debian/copyright ${changelog}
          DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${package} COMPONENT ${component} EXCLUDE_FROM_ALL)
endforeach()
install(FILES debian/lltwrapper.overrides DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides
        RENAME lltwrapper COMPONENT debian EXCLUDE_FROM_ALL)

# --- times of files are the source's
file(WRITE ${CMAKE_CURRENT_BINARY_DIR}/times.cmake [[
execute_process(COMMAND find "${CPACK_TEMPORARY_DIRECTORY}" -exec touch -h -d "@$ENV{SOURCE_DATE_EPOCH}" {} +
                COMMAND_ERROR_IS_FATAL ANY)
]])
if(DEFINED ENV{SOURCE_DATE_EPOCH})
  set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_BINARY_DIR}/times.cmake)
endif()

# --- RPM; the time of the build, too
set(CPACK_RPM_COMPONENT_INSTALL ON)
set(CPACK_RPM_MAIN_COMPONENT lltwrapper)
set(CPACK_RPM_FILE_NAME RPM-DEFAULT)
set(CPACK_RPM_PACKAGE_LICENSE MIT)
set(CPACK_RPM_LLTWRAPPER_PACKAGE_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_RPM_LLTWRAPPER_PACKAGE_DESCRIPTION "${about}")
set(CPACK_RPM_DEV_PACKAGE_NAME lltwrapper-devel)
set(CPACK_RPM_DEV_PACKAGE_REQUIRES "lltwrapper = ${PROJECT_VERSION}")
set(CPACK_RPM_SPEC_MORE_DEFINE "%define use_source_date_epoch_as_buildtime 1
%define clamp_mtime_to_source_date_epoch 1
%define _build_id_links none
%define _buildhost localhost")
set(CPACK_RPM_EXCLUDE_FROM_AUTO_FILELIST_ADDITION
  /usr/libexec /usr/share/cmake /usr/share/pkgconfig /usr/share/bash-completion /usr/share/bash-completion/completions
  /usr/share/fish /usr/share/fish/vendor_completions.d /usr/share/zsh /usr/share/zsh/site-functions)

include(CPack)
cpack_add_component_group(lltwrapper)
cpack_add_component_group(dev)
cpack_add_component(lltwrapper GROUP lltwrapper)
cpack_add_component(debian GROUP lltwrapper)
cpack_add_component(dev GROUP dev)
cpack_add_component(debian-dev GROUP dev)
