#pragma once

#include <cstdio>
#include <string>
#include <vector>

// A table printed with columns as wide as their widest cell.
class TextTable {
  public:
    explicit TextTable(std::vector<std::string> headers) : m_Headers(std::move(headers)) {}
    void Add(std::vector<std::string> row) { m_Rows.push_back(std::move(row)); }
    bool Empty() const { return m_Rows.empty(); }
    void Print(FILE* out, const std::string& indent) const;

  private:
    std::vector<std::string> m_Headers;
    std::vector<std::vector<std::string>> m_Rows;
};
