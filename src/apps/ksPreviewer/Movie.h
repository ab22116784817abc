// The package's media as a movie that every browser plays.
#pragma once

#include <QString>

namespace kestrum::preview {

/// Copies screen and sound of `package` into the movie `file`, without encoding anything. Empty on success, else a
/// sentence for the user.
QString MakeMovie(const QString& package, const QString& file);

}  // namespace kestrum::preview
