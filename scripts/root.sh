# shellcheck shell=bash
# Which development root this checkout wants, and having it made once. Sourced; expects common.sh.

# A root is named after everything that goes into it, so a changed list makes a new one and an unchanged one is kept.
root_name() {
    local sum
    sum=$(cat -- "$scripts/packages.txt" "$scripts/make_root.sh" "$scripts/configure_root.sh" | sha256sum)
    printf 'root-%s\n' "${sum:0:12}"
}
root=$cache/$(root_name)

ensure_root() {
    [[ -d $root ]] || make_root
}

# One process makes a root at a time; whoever comes second waits and finds it there. All that the making starts inherits
# the lock, so it is free only when nobody writes any more, however the first process ended.
make_root() {
    mkdir -p -- "$cache"
    (
        exec 9>"$cache/lock"
        if ! flock --nonblock 9; then
            printf 'waiting for another ./dev that makes a development root\n' >&2
            flock 9
        fi
        remove_leftovers
        [[ -d $root ]] ||
            step "making the development root (once, about 2 GB in $cache)" "$cache/logs/setup.log" \
                "$scripts/make_root.sh" "$root"
    )
}

# What a set-up left that was killed before it could clean up.
remove_leftovers() {
    local leftover
    for leftover in "$cache"/root-*.new; do
        [[ -d $leftover ]] || continue
        remove_tree "$leftover"
    done
}
