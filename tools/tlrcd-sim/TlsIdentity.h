#pragma once

#include <openssl/evp.h>
#include <openssl/x509.h>

#include <memory>
#include <string>

struct X509Free {
    void operator()(X509* cert) const { X509_free(cert); }
};
struct EvpPkeyFree {
    void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
};

// The certificate and key that the simulator serves with.
struct CTlsIdentity {
    std::unique_ptr<X509, X509Free> cert;
    std::unique_ptr<EVP_PKEY, EvpPkeyFree> key;
};

// A self-signed certificate for "localhost" and 127.0.0.1 on a new EC key, made in memory.
bool MakeSelfSignedIdentity(CTlsIdentity& identity, std::string& error);
// Reads a PEM certificate and the PEM private key that belongs to it.
bool LoadIdentity(const std::string& certFile, const std::string& keyFile, CTlsIdentity& identity,
                  std::string& error);
