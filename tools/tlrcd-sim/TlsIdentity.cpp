#include "TlsIdentity.h"

#include <openssl/err.h>
#include <openssl/pem.h>
#include <openssl/rand.h>
#include <openssl/x509v3.h>

#include <cstdio>

#include "runtime/Pipe.h"

namespace {

constexpr long kValidBeforeNowSec = 3600;
constexpr long kValidForSec = 10L * 365 * 24 * 3600;

struct X509ExtensionFree {
    void operator()(X509_EXTENSION* ext) const { X509_EXTENSION_free(ext); }
};

std::string OpenSslError(const std::string& what) {
    const unsigned long code = ERR_get_error();
    char text[256] = "";
    if (code != 0)
        ERR_error_string_n(code, text, sizeof text);
    return what + (code != 0 ? std::string(": ") + text : std::string());
}

bool AddSubjectAltName(X509* cert) {
    X509V3_CTX ctx;
    X509V3_set_ctx_nodb(&ctx);
    X509V3_set_ctx(&ctx, cert, cert, nullptr, nullptr, 0);
    std::unique_ptr<X509_EXTENSION, X509ExtensionFree> ext(
        X509V3_EXT_conf_nid(nullptr, &ctx, NID_subject_alt_name, "DNS:localhost,IP:127.0.0.1"));
    return ext && X509_add_ext(cert, ext.get(), -1) == 1;
}

}  // namespace

bool MakeSelfSignedIdentity(CTlsIdentity& identity, std::string& error) {
    identity.key.reset(EVP_EC_gen("P-256"));
    if (!identity.key) {
        error = OpenSslError("cannot make a key");
        return false;
    }
    identity.cert.reset(X509_new());
    X509* cert = identity.cert.get();
    if (!cert) {
        error = OpenSslError("cannot make a certificate");
        return false;
    }
    unsigned char serial[8];
    RAND_bytes(serial, sizeof serial);
    uint64_t serialNumber = 0;
    for (unsigned char byte : serial)
        serialNumber = (serialNumber << 8) | byte;
    X509_NAME* name = X509_get_subject_name(cert);
    const bool made =
        X509_set_version(cert, 2) == 1 &&
        ASN1_INTEGER_set_uint64(X509_get_serialNumber(cert), serialNumber >> 1) == 1 &&
        X509_gmtime_adj(X509_getm_notBefore(cert), -kValidBeforeNowSec) != nullptr &&
        X509_gmtime_adj(X509_getm_notAfter(cert), kValidForSec) != nullptr &&
        X509_set_pubkey(cert, identity.key.get()) == 1 &&
        X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC,
                                   reinterpret_cast<const unsigned char*>("localhost"), -1, -1,
                                   0) == 1 &&
        X509_set_issuer_name(cert, name) == 1 && AddSubjectAltName(cert) &&
        X509_sign(cert, identity.key.get(), EVP_sha256()) > 0;
    if (!made) {
        error = OpenSslError("cannot make a self-signed certificate");
        return false;
    }
    return true;
}

bool LoadIdentity(const std::string& certFile, const std::string& keyFile, CTlsIdentity& identity,
                  std::string& error) {
    FilePtr certIn(fopen(certFile.c_str(), "r"));
    if (!certIn) {
        error = "cannot read certificate file '" + certFile + "'";
        return false;
    }
    identity.cert.reset(PEM_read_X509(certIn.get(), nullptr, nullptr, nullptr));
    if (!identity.cert) {
        error = OpenSslError("no PEM certificate in '" + certFile + "'");
        return false;
    }
    FilePtr keyIn(fopen(keyFile.c_str(), "r"));
    if (!keyIn) {
        error = "cannot read key file '" + keyFile + "'";
        return false;
    }
    identity.key.reset(PEM_read_PrivateKey(keyIn.get(), nullptr, nullptr, nullptr));
    if (!identity.key) {
        error = OpenSslError("no PEM private key in '" + keyFile + "'");
        return false;
    }
    if (X509_check_private_key(identity.cert.get(), identity.key.get()) != 1) {
        error = "the key in '" + keyFile + "' does not belong to the certificate";
        return false;
    }
    return true;
}
