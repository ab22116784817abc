# How a room of the house is built: one static library per folder, all its sources, warnings as errors.

find_package(PkgConfig REQUIRED)
find_package(Threads REQUIRED)
if(WIN32)
  include(cmake/WindowsLibraries.cmake)
else()
  find_package(GTest REQUIRED)
  find_package(pugixml REQUIRED)
endif()

# The folder that a build makes ready to use: all programs beside the files of install/.
set(KESTRUM_INSTALL_FOLDER "${PROJECT_BINARY_DIR}/install")

set(KESTRUM_WARNINGS -Wall -Wextra -Werror -Wpedantic -Wshadow -Wnon-virtual-dtor)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # GCC 12 sees overlaps in std::string's own code when it optimises.
  list(APPEND KESTRUM_WARNINGS -Wno-restrict)
else()
  # The house compiler decides what is an error; clang builds the fuzzers and sees shadows where GCC sees none.
  list(REMOVE_ITEM KESTRUM_WARNINGS -Werror -Wshadow)
endif()

# kestrum_library(NAME libs...): every .cpp below the current folder becomes part of the static library NAME, but for
# folders with a CMakeLists.txt of their own, which are libraries of their own.
function(kestrum_library name)
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/*.cpp" "${CMAKE_CURRENT_SOURCE_DIR}/*.h")
  file(GLOB_RECURSE inner "${CMAKE_CURRENT_SOURCE_DIR}/CMakeLists.txt")
  list(REMOVE_ITEM inner "${CMAKE_CURRENT_SOURCE_DIR}/CMakeLists.txt")
  foreach(file IN LISTS inner)
    cmake_path(GET file PARENT_PATH folder)
    list(FILTER sources EXCLUDE REGEX "^${folder}/")
  endforeach()
  if(NOT sources MATCHES "\\.cpp")
    add_library(${name} INTERFACE) # a room whose first file is still to come
    target_include_directories(${name} INTERFACE "${PROJECT_SOURCE_DIR}/src")
    target_link_libraries(${name} INTERFACE ${ARGN})
    return()
  endif()
  add_library(${name} STATIC ${sources})
  target_include_directories(${name} PUBLIC "${PROJECT_SOURCE_DIR}/src")
  target_compile_options(${name} PRIVATE ${KESTRUM_WARNINGS})
  target_link_libraries(${name} PUBLIC ${ARGN})
endfunction()

# kestrum_program(NAME libs...): the executable NAME from the .cpp files of the folder NAME; it is installed.
function(kestrum_program name)
  file(GLOB sources CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/${name}/*.cpp" "${CMAKE_CURRENT_SOURCE_DIR}/${name}/*.h")
  add_executable(${name} ${sources})
  target_compile_options(${name} PRIVATE ${KESTRUM_WARNINGS})
  target_link_libraries(${name} PRIVATE ${ARGN})
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${KESTRUM_INSTALL_FOLDER}")
  if(NOT WIN32)
    target_link_options(${name} PRIVATE -Wl,-z,relro,-z,now) # no table of functions stays writable
  endif()
  install(TARGETS ${name} DESTINATION lib/kestrum)
endfunction()

# kestrum_tests(NAME LABEL libs...): one test program from every *_test.cpp of the current folder.
# LABEL is `unit` (portable, under the sanitizers too), `adapter` (needs the real thing) or `e2e`.
function(kestrum_tests name label)
  file(GLOB sources CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/*.cpp")
  if(NOT sources)
    return()
  endif()
  add_executable(${name} ${sources})
  target_compile_options(${name} PRIVATE ${KESTRUM_WARNINGS})
  target_include_directories(${name} PRIVATE "${PROJECT_SOURCE_DIR}/tests")
  target_link_libraries(${name} PRIVATE ${ARGN} test_places GTest::gtest_main)
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES LABELS ${label} TIMEOUT 900)
endfunction()

# kestrum_install_files(): copies install/ into the ready folder whenever one of its files changes.
function(kestrum_install_files)
  file(GLOB_RECURSE files CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/install/*")
  set(stamp "${PROJECT_BINARY_DIR}/install-files.stamp")
  add_custom_command(
    OUTPUT "${stamp}"
    COMMAND ${CMAKE_COMMAND} -E copy_directory "${PROJECT_SOURCE_DIR}/install" "${KESTRUM_INSTALL_FOLDER}"
    COMMAND ${CMAKE_COMMAND} -E create_symlink /usr/bin/ffmpeg "${KESTRUM_INSTALL_FOLDER}/ffmpeg"
    COMMAND ${CMAKE_COMMAND} -E touch "${stamp}"
    DEPENDS ${files}
    COMMENT "Laying out the install folder")
  add_custom_target(install_files ALL DEPENDS "${stamp}")
endfunction()
