#include "xml/EntityTable.h"

#include <cstring>

// The 253 records: the references of the HTML 4 list and apos, in the list's order within a
// bucket. Two names that differ in case only are both stored in lower case; a folded name finds
// the first of them, the one with the lower code point.
const char* const kEntityTable[kEntityBuckets] = {
    "60216oslash60217ugrave60248oslash60249ugrave",                        // 0
    "60221yacute60253yacute50937omega50969omega58968lceil",                // 1
    "50206icirc50238icirc50916delta50948delta68472weierp",                 // 2
    "40185sup1",                                                           // 3
    "40178sup268970lfloor",                                                // 4
    "60164curren40179sup350922kappa50954kappa58212mdash",                  // 5
    "59830diams58211ndash",                                                // 6
    "68855otimes58969rceil",                                               // 7
    "50212ocirc50244ocirc58482trade50338oelig50339oelig",                  // 8
    "50197aring50229aring50931sigma50963sigma",                            // 9
    "50180acute68971rfloor50732tilde",                                     // 10
    "68249lsaquo",                                                         // 11
    "58734infin68201thinsp",                                               // 12
    "50161iexcl",                                                          // 13
    "50219ucirc50251ucirc50920theta50952theta",                            // 14
    "58254oline",                                                          // 15
    "58260frasl68727lowast",                                               // 16
    "60191iquest59827clubs68250rsaquo",                                    // 17
    "50181micro58629crarr",                                                // 18
    "58222bdquo",                                                          // 19
    "",                                                                    // 20
    "60177plusmn58242prime58243prime",                                     // 21
    "40914beta40946beta",                                                  // 22
    "",                                                                    // 23
    "",                                                                    // 24
    "",                                                                    // 25
    "50171laquo50215times",                                                // 26
    "40710circ",                                                           // 27
    "49001lang",                                                           // 28
    "40175macr58220ldquo",                                                 // 29
    "50163pound40182para48476real",                                        // 30
    "",                                                                    // 31
    "50187raquo58713notin",                                                // 32
    "50223szlig50978upsih48773cong",                                       // 33
    "58776asymp58801equiv49002rang58218sbquo",                             // 34
    "50222thorn50254thorn40402fnof48595darr48659darr58221rdquo",           // 35
    "40162cent58722minus",                                                 // 36
    "40170ordf58707exist",                                                 // 37
    "",                                                                    // 38
    "40921iota40953iota48596harr48660harr58709empty",                      // 39
    "",                                                                    // 40
    "40167sect40196auml40228auml48226bull48838sube",                       // 41
    "",                                                                    // 42
    "48592larr48656larr58853oplus",                                        // 43
    "30176deg40186ordm58216lsquo",                                         // 44
    "40160nbsp40203euml40235euml48712isin40039apos",                       // 45
    "40918zeta40950zeta",                                                  // 46
    "48719prod38743and48195emsp",                                          // 47
    "30935chi30967chi38745cap48194ensp",                                   // 48
    "40207iuml40239iuml48594rarr48658rarr48706part48869perp",              // 49
    "38736ang48836nsub58217rsquo",                                         // 50
    "",                                                                    // 51
    "48593uarr48657uarr48901sdot",                                         // 52
    "40169copy48364euro",                                                  // 53
    "30919eta30951eta",                                                    // 54
    "40214ouml40246ouml48839supe",                                         // 55
    "",                                                                    // 56
    "",                                                                    // 57
    "30174reg30038amp",                                                    // 58
    "48733prop",                                                           // 59
    "",                                                                    // 60
    "30208eth40220uuml30240eth40252uuml30934phi30966phi",                  // 61
    "",                                                                    // 62
    "",                                                                    // 63
    "",                                                                    // 64
    "40255yuml40376yuml",                                                  // 65
    "",                                                                    // 66
    "40034quot48204zwnj",                                                  // 67
    "38746cup68756there4",                                                 // 68
    "30929rho30961rho38764sim",                                            // 69
    "30932tau30964tau38834sub",                                            // 70
    "38747int38206lrm38207rlm",                                            // 71
    "30165yen30936psi30968psi",                                            // 72
    "",                                                                    // 73
    "30168uml28805ge",                                                     // 74
    "30982piv",                                                            // 75
    "",                                                                    // 76
    "30172not",                                                            // 77
    "",                                                                    // 78
    "28804le",                                                             // 79
    "30173shy",                                                            // 80
    "38721sum28800ne39674loz",                                             // 81
    "",                                                                    // 82
    "",                                                                    // 83
    "38835sup",                                                            // 84
    "28715ni",                                                             // 85
    "",                                                                    // 86
    "20928pi20960pi38205zwj",                                              // 87
    "",                                                                    // 88
    "60923lambda60955lambda20062gt",                                       // 89
    "",                                                                    // 90
    "",                                                                    // 91
    "60199ccedil60231ccedil",                                              // 92
    "",                                                                    // 93
    "20060lt",                                                             // 94
    "20926xi20958xi28744or",                                               // 95
    "20924mu20956mu",                                                      // 96
    "20925nu20957nu",                                                      // 97
    "68224dagger68225dagger",                                              // 98
    "80977thetasym",                                                       // 99
    "",                                                                    // 100
    "",                                                                    // 101
    "",                                                                    // 102
    "78501alefsym",                                                        // 103
    "",                                                                    // 104
    "",                                                                    // 105
    "",                                                                    // 106
    "60193aacute60195atilde60225aacute60227atilde",                        // 107
    "",                                                                    // 108
    "60247divide70927omicron70959omicron",                                 // 109
    "60192agrave60224agrave",                                              // 110
    "60201eacute60233eacute60962sigmaf",                                   // 111
    "70917epsilon70949epsilon",                                            // 112
    "",                                                                    // 113
    "60200egrave60232egrave",                                              // 114
    "60205iacute60237iacute",                                              // 115
    "",                                                                    // 116
    "",                                                                    // 117
    "60204igrave60236igrave68230hellip",                                   // 118
    "60166brvbar",                                                         // 119
    "60209ntilde60241ntilde68704forall58711nabla69824spades",              // 120
    "60183middot60189frac1260211oacute60213otilde60243oacute60245otilde",  // 121
    "",                                                                    // 122
    "50184cedil60188frac14",                                               // 123
    "50194acirc50198aelig60210ograve50226acirc50230aelig60242ograve",      // 124
    "60190frac3450915gamma50947gamma58465image58730radic",                 // 125
    "60352scaron60353scaron",                                              // 126
    "60218uacute60250uacute69829hearts",                                   // 127
    "50202ecirc50234ecirc50913alpha70933upsilon50945alpha70965upsilon",    // 128
    "68240permil",                                                         // 129
};

int32_t LookupEntity(const char* pszName, size_t nLength) {
    uint32_t nSum = 0;
    for (size_t i = 0; i < nLength; ++i) {
        nSum += uint8_t(pszName[i]);
    }
    for (const char* p = kEntityTable[nSum % kEntityBuckets]; *p;) {
        size_t nLen = size_t(p[0] - '0');
        if (nLen == nLength && std::memcmp(p + 5, pszName, nLength) == 0) {
            return (p[1] - '0') * 1000 + (p[2] - '0') * 100 + (p[3] - '0') * 10 + (p[4] - '0');
        }
        p += 5 + nLen;
    }
    return 0;
}
