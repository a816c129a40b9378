#include "TextTable.h"

#include <algorithm>

void TextTable::Print(FILE* out, const std::string& indent, const Palette& palette) const {
    std::vector<size_t> widths;
    for (const std::string& h : m_Headers)
        widths.push_back(h.size());
    for (const auto& row : m_Rows) {
        for (size_t i = 0; i < row.size() && i < widths.size(); ++i) {
            widths[i] = std::max(widths[i], row[i].text.size());
        }
    }
    auto line = [&](const std::vector<Cell>& cells) {
        std::string text = indent;
        for (size_t i = 0; i < widths.size(); ++i) {
            const Cell cell = i < cells.size() ? cells[i] : Cell("");
            text += palette.Paint(cell.text, cell.severity);
            if (i + 1 < widths.size())
                text += std::string(widths[i] - cell.text.size() + 2, ' ');
        }
        while (!text.empty() && text.back() == ' ')
            text.pop_back();
        fprintf(out, "%s\n", text.c_str());
    };
    line({m_Headers.begin(), m_Headers.end()});
    std::vector<Cell> rule;
    for (size_t w : widths)
        rule.emplace_back(std::string(w, '-'));
    line(rule);
    for (const auto& row : m_Rows)
        line(row);
}
