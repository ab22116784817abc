// The subcommands of the worker that make something out of a package or a picture.
#pragma once

#include <string>
#include <vector>

namespace kestrum::media {

/// `convert-mp4`, see ConvertArguments.h for its line and its output. Runs at nice 10. Exit code: 0 finished, 1 failed,
/// 2 a wrong line, 3 stopped, 4 too large.
int RunConvertMp4(const std::vector<std::string>& arguments);

/// `draw-fit TARGET SOURCE`. Exit code: 0 drawn, 1 failed (the target is as it was), 2 a wrong line.
int RunDrawFit(const std::vector<std::string>& arguments);

}  // namespace kestrum::media
