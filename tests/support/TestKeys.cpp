#include "support/TestKeys.h"

#include <QJsonDocument>
#include <QList>
#include <QtDebug>

#include <openssl/bio.h>
#include <openssl/bn.h>
#include <openssl/ec.h>
#include <openssl/evp.h>
#include <openssl/pem.h>

#include <memory>

using namespace Qt::StringLiterals;

namespace {

using PKey = std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)>;
using Bio = std::unique_ptr<BIO, decltype(&BIO_free)>;

QByteArray bioContents(BIO* bio) {
    char* data = nullptr;
    const long length = BIO_get_mem_data(bio, &data);
    return QByteArray(data, qsizetype(length));
}

QList<QByteArray> jwtParts(const QString& token) {
    const QList<QByteArray> parts = token.toLatin1().split('.');
    return parts.size() == 3 ? parts : QList<QByteArray>{};
}

std::optional<QByteArray> base64urlDecode(const QByteArray& text) {
    const auto result =
        QByteArray::fromBase64Encoding(text, QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals |
                                                 QByteArray::AbortOnBase64DecodingErrors);
    if (!result) {
        return std::nullopt;
    }
    return *result;
}

QJsonObject jwtPart(const QString& token, int index) {
    const QList<QByteArray> parts = jwtParts(token);
    if (parts.isEmpty()) {
        return {};
    }
    const auto json = base64urlDecode(parts[index]);
    return json ? QJsonDocument::fromJson(*json).object() : QJsonObject{};
}

} // namespace

TestKey makeTestKey() {
    PKey key(EVP_EC_gen("P-256"), &EVP_PKEY_free);
    Bio privateBio(BIO_new(BIO_s_mem()), &BIO_free);
    Bio publicBio(BIO_new(BIO_s_mem()), &BIO_free);
    // Without a cipher, PEM_write_bio_PrivateKey writes the unencrypted PKCS#8 form.
    if (!key || !privateBio || !publicBio ||
        PEM_write_bio_PrivateKey(privateBio.get(), key.get(), nullptr, nullptr, 0, nullptr, nullptr) != 1 ||
        PEM_write_bio_PUBKEY(publicBio.get(), key.get()) != 1) {
        qFatal("OpenSSL could not make a P-256 test key");
    }
    return TestKey{bioContents(privateBio.get()), bioContents(publicBio.get())};
}

bool verifyES256(const QString& token, const TestKey& key) {
    const QList<QByteArray> parts = jwtParts(token);
    if (parts.isEmpty() || jwtHeader(token).value(u"alg"_s).toString() != u"ES256"_s) {
        return false;
    }
    const auto raw = base64urlDecode(parts[2]);
    if (!raw || raw->size() != 64) {
        return false;
    }
    const auto* bytes = reinterpret_cast<const unsigned char*>(raw->constData());
    std::unique_ptr<ECDSA_SIG, decltype(&ECDSA_SIG_free)> sig(ECDSA_SIG_new(), &ECDSA_SIG_free);
    BIGNUM* r = BN_bin2bn(bytes, 32, nullptr);
    BIGNUM* s = BN_bin2bn(bytes + 32, 32, nullptr);
    if (!sig || !r || !s || ECDSA_SIG_set0(sig.get(), r, s) != 1) {
        BN_free(r);
        BN_free(s);
        return false;
    }
    unsigned char* der = nullptr;
    const int derLength = i2d_ECDSA_SIG(sig.get(), &der);
    if (derLength <= 0) {
        return false;
    }
    std::unique_ptr<unsigned char, void (*)(unsigned char*)> derOwner(
        der, [](unsigned char* p) { OPENSSL_free(p); });

    Bio bio(BIO_new_mem_buf(key.publicKeyPEM.constData(), int(key.publicKeyPEM.size())), &BIO_free);
    PKey publicKey(bio ? PEM_read_bio_PUBKEY(bio.get(), nullptr, nullptr, nullptr) : nullptr, &EVP_PKEY_free);
    std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> ctx(EVP_MD_CTX_new(), &EVP_MD_CTX_free);
    const QByteArray signingInput = parts[0] + '.' + parts[1];
    return publicKey && ctx &&
           EVP_DigestVerifyInit(ctx.get(), nullptr, EVP_sha256(), nullptr, publicKey.get()) == 1 &&
           EVP_DigestVerify(ctx.get(), der, size_t(derLength),
                            reinterpret_cast<const unsigned char*>(signingInput.constData()),
                            size_t(signingInput.size())) == 1;
}

QJsonObject jwtHeader(const QString& token) {
    return jwtPart(token, 0);
}

QJsonObject jwtPayload(const QString& token) {
    return jwtPart(token, 1);
}
