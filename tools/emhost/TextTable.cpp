#include "TextTable.h"

#include <algorithm>

void TextTable::Print(FILE* out, const std::string& indent) const {
    std::vector<size_t> widths;
    for (const std::string& h : m_Headers)
        widths.push_back(h.size());
    for (const auto& row : m_Rows) {
        for (size_t i = 0; i < row.size() && i < widths.size(); ++i) {
            widths[i] = std::max(widths[i], row[i].size());
        }
    }
    auto line = [&](const std::vector<std::string>& cells) {
        std::string text = indent;
        for (size_t i = 0; i < widths.size(); ++i) {
            std::string cell = i < cells.size() ? cells[i] : "";
            text += cell;
            if (i + 1 < widths.size())
                text += std::string(widths[i] - cell.size() + 2, ' ');
        }
        while (!text.empty() && text.back() == ' ')
            text.pop_back();
        fprintf(out, "%s\n", text.c_str());
    };
    line(m_Headers);
    std::vector<std::string> rule;
    for (size_t w : widths)
        rule.push_back(std::string(w, '-'));
    line(rule);
    for (const auto& row : m_Rows)
        line(row);
}
