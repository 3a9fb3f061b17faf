#!/usr/bin/env bash
# Makes a root at ROOT: a Debian of its own with everything that scripts/roots/KIND names.
#
#   make_root.sh KIND ROOT
#
#   suite          the release of Debian
#   packages.txt   what is installed
#   sources.txt    source packages, if any, each with its release: downloaded to /usr/src, for what is built for another
#                  system
#
# Needs no privilege and no more than a Debian has: apt resolves and downloads with a state of its own, the essential
# packages are unpacked by hand, and from then on the root's own dpkg installs them all, in a user namespace under
# fakeroot. The result appears under its name only when it is complete.
set -euo pipefail

readonly keyring=/usr/share/keyrings/debian-archive-keyring.gpg
readonly kind=$1 target=$2
readonly work=$target.new
readonly new=$work/root
checkout=$(cd -- "${BASH_SOURCE[0]%/*}/.." && pwd)
# shellcheck source=scripts/common.sh
. "$checkout/scripts/common.sh"
# shellcheck source=scripts/sandbox.sh
. "$checkout/scripts/sandbox.sh"
readonly wanted_here=$scripts/roots/$kind
suite=$(<"$wanted_here/suite")

main() {
    require_tools
    mkdir -- "$work"
    trap 'remove_tree "$work"' EXIT
    trap 'exit 130' INT TERM HUP
    local wanted
    mapfile -t wanted <"$wanted_here/packages.txt"
    write_apt_configuration
    apt update
    download base '?essential' fakeroot bubblewrap
    download all '?essential' fakeroot bubblewrap "${wanted[@]}"
    unpack_base
    check_user_namespaces
    install_packages
    download_sources
    mv -T -- "$new" "$target"
}

require_tools() {
    local tool
    for tool in apt-get dpkg dpkg-deb tar flock; do
        type -P "$tool" >/dev/null ||
            give_up "$tool is missing: ./dev makes its development root on Debian; elsewhere build with cmake --preset release"
    done
}

give_up() { # MESSAGE
    printf 'E: %s\n' "$1" >&2
    exit 1
}

# The archive that this machine itself is installed from serves the development suite too.
archive() {
    local codename
    codename=$(. /etc/os-release && printf '%s' "${VERSION_CODENAME:-$suite}")
    # shellcheck disable=SC2016
    apt-get indextargets --no-release-info --format '$(RELEASE) $(COMPONENT) $(REPO_URI)' 'Created-By: Packages' |
        awk -v codename="$codename" '$1 == codename && $2 == "main" && !uri { uri = $3 } END { print uri }'
}

# An apt of its own: it reads how this machine reaches the network and nothing else of its state, and runs none of its hooks.
write_apt_configuration() {
    local uri signed_by=
    uri=${QUILLMAR_DEBIAN_ARCHIVE:-$(archive)}
    [[ -n $uri ]] || give_up "apt knows no Debian archive: set QUILLMAR_DEBIAN_ARCHIVE to the address of one"
    [[ ! -r $keyring ]] || signed_by="[signed-by=$keyring]"
    mkdir -p -- "$work"/apt/{lists,archives}/partial "$new"
    : >"$work/apt/status"
    printf 'deb %s %s %s main\n' "$signed_by" "$uri" "$suite" >"$work/apt/sources.list"
    source_suites | while read -r release; do
        printf 'deb-src %s %s %s main\n' "$signed_by" "$uri" "$release" >>"$work/apt/sources.list"
    done
    cat >"$work/apt/apt.conf" <<END
#clear APT::Update::Pre-Invoke;
#clear APT::Update::Post-Invoke;
#clear APT::Update::Post-Invoke-Success;
#clear APT::Architectures;
APT::Architectures { "$(dpkg --print-architecture)"; };
APT::Default-Release "";
APT::Install-Recommends "false";
APT::Sandbox::User "root";
APT::Get::Assume-Yes "true";
Acquire::Check-Valid-Until "false";
Acquire::Languages "none";
Acquire::Retries "3";
Dir::State::lists "$work/apt/lists";
Dir::State::status "$work/apt/status";
Dir::State::extended_states "$work/apt/extended_states";
Dir::Cache "$work/apt";
Dir::Cache::archives "$work/apt/archives";
Dir::Etc::sourcelist "$work/apt/sources.list";
Dir::Etc::sourceparts "/dev/null";
Dir::Etc::preferences "/dev/null";
Dir::Etc::preferencesparts "/dev/null";
Dir::Log "$work/apt";
END
}

apt() { # ARGUMENTS...
    apt-get -c "$work/apt/apt.conf" "$@"
}

# Downloads packages with all that they need, and keeps the list of their files.
download() { # LIST PACKAGES...
    local list=$1
    shift
    apt install --download-only --no-install-recommends "$@"
    (cd -- "$work/apt/archives" && printf '%s\n' *.deb) >"$work/$list.list"
}

# As they are: whoever builds them unpacks them.
download_sources() {
    [[ -e $wanted_here/sources.txt ]] || return 0
    local release name
    while read -r release name; do
        (cd -- "$new/usr/src" && apt source --download-only "$name/$release" </dev/null)
    done <"$wanted_here/sources.txt"
}

source_suites() {
    [[ ! -e $wanted_here/sources.txt ]] || awk '{ print $1 }' "$wanted_here/sources.txt" | sort -u
}

# Enough for the root's own dpkg to run.
unpack_base() {
    local link package
    mkdir -p -- "$new/usr"
    for link in bin sbin lib lib64; do
        mkdir -p -- "$new/usr/$link"
        ln -s -- "usr/$link" "$new/$link"
    done
    while read -r package; do
        dpkg-deb --fsys-tarfile "$work/apt/archives/$package" |
            tar --extract --no-same-owner --keep-directory-symlink --directory "$new"
    done <"$work/base.list"
}

check_user_namespaces() {
    bubblewrap "$new" --unshare-user --uid 0 --gid 0 --bind "$new" / true ||
        give_up "user namespaces are switched off on this machine: ask its administrator to allow them (sysctl kernel.unprivileged_userns_clone=1)"
}

install_packages() {
    bubblewrap "$new" --unshare-user --uid 0 --gid 0 --unshare-pid --unshare-ipc --unshare-net --unshare-uts \
        --die-with-parent --bind "$new" / --proc /proc --dev /dev --tmpfs /tmp --tmpfs /run \
        --ro-bind "$scripts/configure_root.sh" /run/configure_root.sh --ro-bind "$work" /run/packages \
        --clearenv --setenv PATH /usr/sbin:/usr/bin --setenv HOME /root --setenv LC_ALL C.UTF-8 \
        --setenv FAKEROOTDONTTRYCHOWN 1 --setenv DEBIAN_FRONTEND noninteractive --setenv DEBCONF_NONINTERACTIVE_SEEN true \
        --chdir /run/packages/apt/archives \
        fakeroot-sysv bash /run/configure_root.sh
}

main
