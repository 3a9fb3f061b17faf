#include "tests/support/tls_service/certificates.h"

#include <openssl/bio.h>
#include <openssl/ec.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/rand.h>
#include <openssl/x509v3.h>

#include <memory>

namespace quillmar::test
{

namespace
{

constexpr long DaySeconds = 24L * 60 * 60;

using KeyHandle = std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)>;
using CertificateHandle = std::unique_ptr<X509, decltype(&X509_free)>;
using BioHandle = std::unique_ptr<BIO, decltype(&BIO_free_all)>;
using ExtensionHandle = std::unique_ptr<X509_EXTENSION, decltype(&X509_EXTENSION_free)>;

/// What is written on a certificate, and whose key says so.
struct Paper {
    QByteArray subject;
    QByteArray issuer;
    QByteArray alternativeName; ///< empty for an authority
    long validFrom = -DaySeconds;
    long validTo = 30 * DaySeconds;
};

KeyHandle newKey()
{
    return {EVP_EC_gen("P-256"), &EVP_PKEY_free};
}

QByteArray content(BIO *bio)
{
    char *data = nullptr;
    const long size = BIO_get_mem_data(bio, &data);
    return {data, size};
}

QSslKey toQt(EVP_PKEY *key)
{
    const BioHandle bio(BIO_new(BIO_s_mem()), &BIO_free_all);
    PEM_write_bio_PrivateKey(bio.get(), key, nullptr, nullptr, 0, nullptr, nullptr);
    return QSslKey(content(bio.get()), QSsl::Ec);
}

QSslCertificate toQt(X509 *certificate)
{
    const BioHandle bio(BIO_new(BIO_s_mem()), &BIO_free_all);
    PEM_write_bio_X509(bio.get(), certificate);
    return QSslCertificate(content(bio.get()), QSsl::Pem);
}

KeyHandle fromQt(const QSslKey &key)
{
    const QByteArray pem = key.toPem();
    const BioHandle bio(BIO_new_mem_buf(pem.constData(), int(pem.size())), &BIO_free_all);
    return {PEM_read_bio_PrivateKey(bio.get(), nullptr, nullptr, nullptr), &EVP_PKEY_free};
}

void setName(X509_NAME *name, const QByteArray &commonName)
{
    QByteArray text = commonName;
    X509_NAME_add_entry_by_NID(name, NID_commonName, MBSTRING_UTF8,
                               reinterpret_cast<const unsigned char *>(text.constData()), int(text.size()),
                               -1, 0);
}

void addExtension(X509 *certificate, int nid, const QByteArray &value)
{
    X509V3_CTX context;
    X509V3_set_ctx_nodb(&context);
    X509V3_set_ctx(&context, certificate, certificate, nullptr, nullptr, 0);
    const ExtensionHandle extension(X509V3_EXT_conf_nid(nullptr, &context, nid, value.constData()),
                                    &X509_EXTENSION_free);
    X509_add_ext(certificate, extension.get(), -1);
}

void setSerial(X509 *certificate)
{
    quint32 number = 0;
    RAND_bytes(reinterpret_cast<unsigned char *>(&number), int(sizeof number));
    ASN1_INTEGER_set_uint64(X509_get_serialNumber(certificate), quint64(number) + 1);
}

QSslCertificate sign(const Paper &paper, EVP_PKEY *subjectKey, EVP_PKEY *issuerKey)
{
    const CertificateHandle certificate(X509_new(), &X509_free);
    X509 *x = certificate.get();
    X509_set_version(x, X509_VERSION_3);
    setSerial(x);
    X509_gmtime_adj(X509_getm_notBefore(x), paper.validFrom);
    X509_gmtime_adj(X509_getm_notAfter(x), paper.validTo);
    X509_set_pubkey(x, subjectKey);
    setName(X509_get_subject_name(x), paper.subject);
    setName(X509_get_issuer_name(x), paper.issuer);
    if (paper.alternativeName.isEmpty()) {
        addExtension(x, NID_basic_constraints, "critical,CA:TRUE");
        addExtension(x, NID_key_usage, "critical,keyCertSign,cRLSign");
    } else {
        addExtension(x, NID_basic_constraints, "critical,CA:FALSE");
        addExtension(x, NID_subject_alt_name, "DNS:" + paper.alternativeName);
    }
    X509_sign(x, issuerKey, EVP_sha256());
    return toQt(x);
}

QByteArray authorityName()
{
    return QByteArrayLiteral("Quillmar Test Authority");
}

} // namespace

Authority::Authority()
{
    const KeyHandle key = newKey();
    const Paper paper{.subject = authorityName(), .issuer = authorityName(), .alternativeName = {}};
    identity_ = {.certificate = sign(paper, key.get(), key.get()), .key = toQt(key.get())};
}

Identity Authority::issue(const LeafOptions &options) const
{
    const KeyHandle key = newKey();
    const KeyHandle authorityKey = fromQt(identity_.key);
    const QByteArray host = options.hostName.toLatin1();
    Paper paper{
        .subject = host, .issuer = options.selfSigned ? host : authorityName(), .alternativeName = host};
    if (options.expired) {
        paper.validFrom = -3 * DaySeconds;
        paper.validTo = -DaySeconds;
    }
    EVP_PKEY *issuerKey = options.selfSigned ? key.get() : authorityKey.get();
    return {.certificate = sign(paper, key.get(), issuerKey), .key = toQt(key.get())};
}

} // namespace quillmar::test
