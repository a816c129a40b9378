#pragma once

#include <string>

// A fresh directory under /tmp, removed with everything in it when the object goes.
class TempDir {
  public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    const std::string& Path() const { return m_sPath; }
    // Writes a file in the directory and returns its path.
    std::string Write(const std::string& name, const std::string& content) const;

  private:
    std::string m_sPath;
};
