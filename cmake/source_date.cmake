# With SOURCE_DATE_EPOCH two builds of one source are equal byte for byte, in whatever directories.
set(LLT_BUILT "") # a definition for the banner: the time as __TIME__ and __DATE__ have it
if(DEFINED ENV{SOURCE_DATE_EPOCH})
  string(TIMESTAMP built "%H:%M:%S %b %d %Y" UTC)
  string(REGEX REPLACE "([a-z]) 0" "\\1  " built "${built}")
  set(LLT_BUILT ";LLTWRAPPER_BUILT=\"${built}\"")
  add_compile_options(-ffile-prefix-map=${CMAKE_BINARY_DIR}=. -ffile-prefix-map=${CMAKE_SOURCE_DIR}=.)
endif()
