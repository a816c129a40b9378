#include "xml/XmlScanImpl.h"

int ScanToken(XmlScanner& scanner, XmlToken& token) {
    return TokenScan(scanner, token).Scan();
}
