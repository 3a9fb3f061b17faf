# shellcheck shell=bash
# Runs commands in the development root. Sourced; expects common.sh.
#
# Everybody is user 1000 of an own user namespace in there, root of the machine too, so that nothing depends on who
# called. The one capability left lets the demo service listen on port 443 of the sandbox's own loopback.

readonly sandbox_user=1000

# The root brings its own bubblewrap; starting it through the root's own loader asks nothing of the machine.
bubblewrap() { # ROOT ARGUMENTS...
    local root=$1 loaders libraries
    shift
    loaders=("$root"/usr/lib*/ld-linux-*.so.*)
    libraries=("$root"/usr/lib/*-linux-gnu)
    "${loaders[0]}" --inhibit-cache --library-path "${libraries[0]}" "$root/usr/bin/bwrap" "$@"
}

# The user who owns the checkout is the one who can write there; root, when the checkout is somebody else's, can only as
# the real root.
sandbox_identity() {
    if [[ $EUID -eq 0 && $(stat -c %u -- "$checkout") -ne 0 ]]; then
        printf '%s\n' --cap-add CAP_DAC_OVERRIDE
    else
        printf '%s\n' --unshare-user --uid "$sandbox_user" --gid "$sandbox_user"
    fi
}

# A /dev like that of bubblewrap's own --dev, which would put the sandbox into a second user namespace in which the
# capability for port 443 says nothing about the network.
device_options() {
    local name
    printf '%s\n' --tmpfs /dev
    for name in null zero full random urandom tty ptmx pts; do
        printf '%s\n' --dev-bind-try "/dev/$name" "/dev/$name"
    done
    printf '%s\n' --symlink /proc/self/fd /dev/fd --perms 1777 --tmpfs /dev/shm
}

# What a kind of root needs besides itself.
root_options=()

in_root() { # COMMAND...
    sandbox --unshare-ipc -- "$@"
}

sandbox() { # BUBBLEWRAP-OPTIONS... -- COMMAND...
    local identity devices runtime=/run/user/$sandbox_user
    mapfile -t identity < <(sandbox_identity)
    mapfile -t devices < <(device_options)
    mkdir -p -- "$cache/ccache"
    bubblewrap "$root" \
        --cap-drop ALL "${identity[@]}" --cap-add CAP_NET_BIND_SERVICE \
        --unshare-pid --unshare-net --unshare-uts --hostname quillmar --die-with-parent \
        --ro-bind "$root" / --proc /proc "${devices[@]}" \
        --perms 1777 --tmpfs /tmp --perms 1777 --dir /tmp/.X11-unix --tmpfs /var/tmp \
        --tmpfs /run --perms 0700 --dir "$runtime" --perms 0700 --tmpfs /home/developer \
        --bind "$checkout" /src --bind "$cache/ccache" /ccache --chdir /src "${root_options[@]}" \
        --clearenv \
        --setenv PATH /usr/bin:/usr/sbin --setenv HOME /home/developer --setenv USER developer \
        --setenv LOGNAME developer --setenv LC_ALL C.UTF-8 --setenv TERM "${TERM:-dumb}" \
        --setenv XDG_RUNTIME_DIR "$runtime" --setenv QT_QPA_PLATFORM offscreen \
        --setenv CCACHE_DIR /ccache --setenv CMAKE_CXX_COMPILER_LAUNCHER ccache \
        --setenv QUILLMAR_TLS_DIR /tls \
        "$@"
}
