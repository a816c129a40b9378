#pragma once

// The yardstick of the request benchmarks: the time of one CXmlDoc parse of the same text.

#include <chrono>
#include <string>

#include "xml/XmlDoc.h"

inline double SecondsSince(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// One parse of the text into a new document: the best of a few rounds, the one least
// disturbed by other work.
inline double ParseSeconds(const std::string& text) {
    double dBest = 0;
    for (int nRound = 0; nRound < 5; ++nRound) {
        const int nParses = 10;
        const auto start = std::chrono::steady_clock::now();
        for (int i = 0; i < nParses; ++i) {
            CXmlDoc doc;
            doc.SetDoc(text);
        }
        const double dRound = SecondsSince(start) / nParses;
        dBest = nRound == 0 || dRound < dBest ? dRound : dBest;
    }
    return dBest;
}
