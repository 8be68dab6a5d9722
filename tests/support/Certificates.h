// Certificates that are made during a test: an authority, and the certificates it signs.
#pragma once

#include <openssl/bio.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>

#include <chrono>
#include <memory>
#include <string>

namespace orlune::test {

class Certificate {
  public:
    using Days = std::chrono::duration<int, std::ratio<86400>>;

    /// A self-signed authority.
    explicit Certificate(const std::string& name) : Certificate(name, nullptr, Days(1)) {}
    /// A certificate for one host ("DNS:localhost", "IP:127.0.0.1"), valid until `expires` from
    /// now, which may be in the past.
    Certificate(const std::string& host, const Certificate& authority, Days expires)
        : Certificate(host, &authority, expires) {}

    std::string certificate() const {
        return written([this](BIO* output) { PEM_write_bio_X509(output, certificate_.get()); });
    }
    std::string privateKey() const {
        return written([this](BIO* output) {
            PEM_write_bio_PrivateKey(output, key_.get(), nullptr, nullptr, 0, nullptr, nullptr);
        });
    }

  private:
    Certificate(const std::string& name, const Certificate* authority, Days expires)
        : key_(EVP_EC_gen("P-256"), EVP_PKEY_free), certificate_(X509_new(), X509_free) {
        constexpr long secondsOfADay = 86400;
        X509* const made = certificate_.get();
        const X509* const issuer = authority ? authority->certificate_.get() : made;
        X509_set_version(made, X509_VERSION_3);
        ASN1_INTEGER_set(X509_get_serialNumber(made), authority ? 2 : 1);
        X509_gmtime_adj(X509_getm_notBefore(made), -30 * secondsOfADay);
        X509_gmtime_adj(X509_getm_notAfter(made), expires.count() * secondsOfADay);
        X509_NAME_add_entry_by_txt(X509_get_subject_name(made), "CN", MBSTRING_ASC,
                                   reinterpret_cast<const unsigned char*>(name.c_str()), -1, -1, 0);
        X509_set_issuer_name(made, X509_get_subject_name(issuer));
        X509_set_pubkey(made, key_.get());
        addExtension(authority ? NID_subject_alt_name : NID_basic_constraints,
                     authority ? name : "critical,CA:TRUE");
        X509_sign(made, authority ? authority->key_.get() : key_.get(), EVP_sha256());
    }

    void addExtension(int kind, const std::string& value) {
        X509_EXTENSION* extension = X509V3_EXT_conf_nid(nullptr, nullptr, kind, value.c_str());
        X509_add_ext(certificate_.get(), extension, -1);
        X509_EXTENSION_free(extension);
    }

    template <typename Write>
    static std::string written(Write write) {
        const std::unique_ptr<BIO, decltype(&BIO_free)> output(BIO_new(BIO_s_mem()), BIO_free);
        write(output.get());
        char* bytes = nullptr;
        const long size = BIO_get_mem_data(output.get(), &bytes);
        return std::string(bytes, static_cast<std::size_t>(size));
    }

    std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)> key_;
    std::unique_ptr<X509, decltype(&X509_free)> certificate_;
};

} // namespace orlune::test
