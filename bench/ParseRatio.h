#pragma once

// The yardstick of the request benchmarks: the time of one CXmlDoc parse of the same text.

#include <ctime>
#include <string>

#include "xml/XmlDoc.h"

// The CPU time of the calling thread: other work on a shared machine stretches wall time,
// not this.
struct ThreadClock {
    using time_point = double;
    static double now() {
        timespec t;
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
        return double(t.tv_sec) + double(t.tv_nsec) * 1e-9;
    }
};

inline double SecondsSince(double start) {
    return ThreadClock::now() - start;
}

// One parse of the text into a new document, in CPU time: the best of a few rounds, the one
// least disturbed by other work.
inline double ParseSeconds(const std::string& text) {
    double dBest = 0;
    for (int nRound = 0; nRound < 5; ++nRound) {
        const int nParses = 10;
        const double start = ThreadClock::now();
        for (int i = 0; i < nParses; ++i) {
            CXmlDoc doc;
            doc.SetDoc(text);
        }
        const double dRound = SecondsSince(start) / nParses;
        dBest = nRound == 0 || dRound < dBest ? dRound : dBest;
    }
    return dBest;
}
