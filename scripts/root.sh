# shellcheck shell=bash
# Which root this checkout wants, and having it made once. Sourced; expects common.sh.
#
# There are three: `development` with the OBS that the module is for, `stable` with the oldest libraries that it compiles
# with, `windows` with the tools that make and run programs for Windows.

# A root is named after everything that goes into it, so a changed list makes a new one and an unchanged one is kept.
root_name() { # KIND
    local sum
    sum=$(cat -- "$scripts/roots/$1"/* "$scripts/make_root.sh" "$scripts/configure_root.sh" | sha256sum)
    printf 'root-%s-%s\n' "$1" "${sum:0:12}"
}

# Everything from here on happens in the root of this kind.
use_root() { # KIND
    root_kind=$1
    root=$cache/$(root_name "$1")
}
use_root development

ensure_root() {
    [[ -d $root ]] || locked make_root
}

# One process makes things in the cache at a time; whoever comes second waits and finds them there. All that the making
# starts inherits the lock, so it is free only when nobody writes any more, however the first process ended.
locked() { # COMMAND...
    mkdir -p -- "$cache"
    (
        exec 9>"$cache/lock"
        if ! flock --nonblock 9; then
            printf 'waiting for another ./dev that sets up the cache\n' >&2
            flock 9
        fi
        remove_leftovers
        "$@"
    )
}

make_root() {
    [[ -d $root ]] ||
        step "making the $root_kind root (once, about 2 GB in $cache)" "$cache/logs/setup-$root_kind.log" \
            "$scripts/make_root.sh" "$root_kind" "$root"
}

# What a set-up left that was killed before it could clean up.
remove_leftovers() {
    local leftover
    for leftover in "$cache"/*.new; do
        [[ -d $leftover ]] || continue
        remove_tree "$leftover"
    done
}
