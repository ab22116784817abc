# The libraries that Debian has no Windows build of, built from Debian's own sources: GoogleTest as installed by the
# package `googletest`, pugixml as fetched by tools/debian-source.

set(KESTRUM_DEBIAN_SOURCES "${PROJECT_SOURCE_DIR}/build/debian-sources" CACHE PATH "Where tools/debian-source unpacks")

set(BUILD_GMOCK OFF CACHE BOOL "" FORCE)
set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
add_subdirectory(/usr/src/googletest "${PROJECT_BINARY_DIR}/googletest" EXCLUDE_FROM_ALL)

set(pugixml "${KESTRUM_DEBIAN_SOURCES}/pugixml/src")
if(NOT EXISTS "${pugixml}/pugixml.cpp")
  message(FATAL_ERROR "No sources of pugixml in ${pugixml}: run tools/debian-source pugixml")
endif()
add_library(pugixml STATIC "${pugixml}/pugixml.cpp")
target_include_directories(pugixml SYSTEM PUBLIC "${pugixml}")
add_library(pugixml::pugixml ALIAS pugixml)
