// Where the tests find the project's own files and the programs built with them. The values lie in a source file made
// by CMake, so that the objects of the tests are the same in every checkout and a compiler cache can serve them all.
#pragma once

namespace kestrum::places {

extern const char* const kSource;   ///< root folder of the sources
extern const char* const kInstall;  ///< the ready program folder of this build

}  // namespace kestrum::places
