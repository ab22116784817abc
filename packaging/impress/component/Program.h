// The program behind the commands as a child process of the office.
#pragma once

#include <sys/types.h>

#include <functional>
#include <rtl/ustring.hxx>

namespace kestrum::extension {

/// How a program ended.
struct ProgramEnd {
    bool wellBehaved = false;  ///< exit code 0, or ended by request
    rtl::OUString sentence;    ///< what it said last on standard error, without its name; may be empty
};

/// Starts "PROGRAM attach --pipe PIPE [--automatic]" and calls `ended` once, on a thread of its own, when it has ended.
/// False if there is no such program. The program gets a session of its own: what ends the office's terminal does not
/// end a recording.
bool StartProgram(const rtl::OUString& pipe, bool automatic, std::function<void(const ProgramEnd&)> ended);

/// Path of the program: the one that kestrum.ini names as KESTRUM_PROGRAM, else the installed one.
rtl::OUString ProgramPath();

}  // namespace kestrum::extension
