#pragma once

#include <string>

#include "runtime/Pipe.h"

// Opens a file for appending that only its owner may read and write (mode 0600), for the
// files of our tools that can hold tokens or whole requests. A new file is created so,
// whatever the umask; an existing regular file is set to 0600 before anything is written
// to it. A device, pipe or socket (/dev/null, /dev/stderr) keeps its mode. Null on failure,
// with errno telling why; also when an existing file's mode can't be changed.
FilePtr OpenPrivateFile(const std::string& path);
