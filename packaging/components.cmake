# Read by cpack for each kind of package: files that only Debian asks for go into its packages alone.
set(CPACK_COMPONENTS_ALL lltwrapper dev)
if(CPACK_GENERATOR STREQUAL "DEB")
  list(APPEND CPACK_COMPONENTS_ALL debian debian-dev)
endif()
