# shellcheck shell=bash
# Places and messages that `dev` and its helper scripts share. Sourced; expects `checkout` to be set.

cache=${XDG_CACHE_HOME:-${HOME:?HOME is not set}/.cache}/quillmar-obs-plugin
scripts=$checkout/scripts
build=$checkout/build
logs=$build/logs

fail() { # MESSAGE
    printf 'dev: %s\n' "$1" >&2
    exit 1
}

# Runs a command with its output in a log, says in one line what it was and how long it took.
step() { # WHAT LOG COMMAND...
    local what=$1 log=$2 started=$SECONDS
    shift 2
    mkdir -p -- "${log%/*}"
    printf '%s ... ' "$what" >&2
    if "$@" </dev/null >"$log" 2>&1; then
        printf 'done in %d s\n' $((SECONDS - started)) >&2
    else
        printf 'failed after %d s\n' $((SECONDS - started)) >&2
        show_failure "$log"
        fail "$what failed: read $log, mend the first error in it, and call ./dev again"
    fi
}

# The lines of a log that most likely tell what went wrong.
show_failure() { # LOG
    grep -m 20 -E -A 5 '(error|Error)( at .*)?:( |$)|FAILED|^E: |fatal' -- "$1" >&2 || tail -n 20 -- "$1" >&2
}

# Packages carry folders without the write bit, in which an ordinary user cannot delete.
remove_tree() { # FOLDER
    find "$1" -type d ! -perm -u+rwx -exec chmod u+rwx {} +
    rm -rf -- "$1"
}
