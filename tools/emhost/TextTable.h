#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include "Colour.h"

// A table printed with columns as wide as their widest cell; a cell with a severity is
// painted, and its colour takes no room.
class TextTable {
  public:
    struct Cell {
        Cell(std::string text, Severity severity = Severity::kNone)
            : text(std::move(text)), severity(severity) {}
        Cell(const char* text) : text(text) {}
        std::string text;
        Severity severity = Severity::kNone;
    };

    explicit TextTable(std::vector<std::string> headers) : m_Headers(std::move(headers)) {}
    void Add(std::vector<Cell> row) { m_Rows.push_back(std::move(row)); }
    bool Empty() const { return m_Rows.empty(); }
    void Print(FILE* out, const std::string& indent, const Palette& palette = Palette()) const;

  private:
    std::vector<std::string> m_Headers;
    std::vector<std::vector<Cell>> m_Rows;
};
