#!/usr/bin/env bash
# Runs inside a new development root, under fakeroot: installs the downloaded packages, then settles what the sandbox needs.
set -euo pipefail

readonly service_host=quillmar.example

main() {
    install_packages
    name_the_developer
    make_certificates
    mkdir -p /src /ccache /opt/windows
}

install_packages() {
    # Nobody reads manuals in here; unsynchronised writing is safe because a root that is not complete is thrown away.
    printf '%s\n' force-unsafe-io path-exclude=/usr/share/{doc,man,info,locale,gtk-doc}/'*' >/etc/dpkg/dpkg.cfg.d/development-root
    printf '#!/bin/sh\nexit 101\n' >/usr/sbin/policy-rc.d
    chmod +x /usr/sbin/policy-rc.d
    mkdir -p /var/lib/dpkg/info /var/lib/dpkg/updates
    touch /var/lib/dpkg/status /var/lib/dpkg/available
    xargs -a /run/packages/base.list dpkg --force-depends --install
    xargs -a /run/packages/all.list dpkg --force-depends --skip-same-version --install
    dpkg --audit
}

name_the_developer() {
    printf 'developer:x:1000:1000:Developer:/home/developer:/bin/bash\n' >>/etc/passwd
    printf 'developer:x:1000:\n' >>/etc/group
    mkdir -p /home/developer
    dbus-uuidgen --ensure=/etc/machine-id
    printf '127.0.0.1 localhost %s\n' "$service_host" >/etc/hosts
}

# The only authority that programs in the root trust. Its own key is thrown away as soon as it has signed.
make_certificates() {
    local authority=/tmp/authority.key certificates=/etc/ssl/certs
    umask 077
    mkdir /tls
    openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:P-256 -noenc -days 3650 -subj '/CN=Quillmar development' \
        -addext 'keyUsage=critical,keyCertSign' -keyout "$authority" -out /tls/ca.pem
    openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:P-256 -noenc -days 3650 -subj "/CN=$service_host" \
        -addext "subjectAltName=DNS:$service_host" -addext 'basicConstraints=critical,CA:FALSE' \
        -addext 'extendedKeyUsage=serverAuth' -CA /tls/ca.pem -CAkey "$authority" \
        -keyout /tls/server.key -out /tls/server.pem
    umask 022
    rm -rf "$certificates"
    mkdir "$certificates"
    cp /tls/ca.pem "$certificates/ca-certificates.crt"
    cp /tls/ca.pem "$certificates/$(openssl x509 -in /tls/ca.pem -noout -hash).0"
    chmod 644 "$certificates"/* /tls/*.pem
    chmod 755 /tls
}

main
