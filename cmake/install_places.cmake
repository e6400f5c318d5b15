# Where the parts of an installation are, and the ways between them, which the programs know.
include(GNUInstallDirs)
set(LLT_DRIVERS_DIR ${CMAKE_INSTALL_LIBEXECDIR}/lltwrapper) # what the wrapper runs: no names for a shell's PATH
set(LLT_LIBRARIES_DIR ${CMAKE_INSTALL_LIBDIR}/lltcov)
set(LLT_DATA_DIR ${CMAKE_INSTALL_DATADIR}/lltwrapper)

# llt_place_definition(NAME FROM TO): the definition NAME for what looks for TO from a program in FROM
function(llt_place_definition name from to)
  cmake_path(ABSOLUTE_PATH from BASE_DIRECTORY ${CMAKE_INSTALL_PREFIX})
  cmake_path(ABSOLUTE_PATH to BASE_DIRECTORY ${CMAKE_INSTALL_PREFIX})
  cmake_path(RELATIVE_PATH to BASE_DIRECTORY ${from})
  set_property(SOURCE commonfunc/own_files.cpp APPEND PROPERTY COMPILE_DEFINITIONS ${name}="${to}")
endfunction()

llt_place_definition(LLT_DRIVERS_FROM_BIN ${CMAKE_INSTALL_BINDIR} ${LLT_DRIVERS_DIR})
llt_place_definition(LLT_LIBRARIES_FROM_DRIVERS ${LLT_DRIVERS_DIR} ${LLT_LIBRARIES_DIR})
llt_place_definition(LLT_LIBRARIES_FROM_BIN ${CMAKE_INSTALL_BINDIR} ${LLT_LIBRARIES_DIR})
llt_place_definition(LLT_DATA_FROM_BIN ${CMAKE_INSTALL_BINDIR} ${LLT_DATA_DIR})
