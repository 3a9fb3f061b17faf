#pragma once

#include <QSslCertificate>
#include <QSslKey>
#include <QString>

namespace quillmar::test
{

/// A certificate with its key, as a server needs both.
struct Identity {
    QSslCertificate certificate;
    QSslKey key;
};

/// What a leaf certificate is made of.
struct LeafOptions {
    QString hostName;
    bool expired = false;
    bool selfSigned = false; ///< signed by its own key, not by the authority
};

/// A certificate authority that exists only in this process; its key is made when it is constructed.
class Authority
{
public:
    Authority();

    const QSslCertificate &certificate() const { return identity_.certificate; }

    Identity issue(const LeafOptions &options) const;

private:
    Identity identity_;
};

} // namespace quillmar::test
