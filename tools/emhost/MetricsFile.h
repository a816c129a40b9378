#pragma once

#include <string>

// Writes the text to the path whole: into a new file in the same directory, which is then
// renamed over the path, so that a reader (a text-file collector) finds the old file or the
// new one, never a part. The file holds no secret: mode 0644. False with the reason when it
// could not be written; the path is then left as it was, and no new file stays behind.
bool WriteFileWhole(const std::string& path, const std::string& text, std::string& error);
