# shellcheck shell=bash
# Building and testing for Windows, with GCC and under Wine. Sourced; expects common.sh, root.sh, sandbox.sh, programs.sh.

# What is built once for Windows is named after everything that goes into it, like the root in which it is built.
windows_libraries() {
    local sum
    sum=$(cat -- "$scripts/windows/make_libraries.sh" "$checkout/cmake/windows-toolchain.cmake" | sha256sum)
    printf '%s/windows-%s-%s\n' "$cache" "${root##*-}" "${sum:0:12}"
}

use_windows_libraries() {
    libraries=$(windows_libraries)
    [[ -d $libraries ]] || locked make_windows_libraries
    root_options=(--ro-bind "$libraries" /opt/windows)
}

make_windows_libraries() {
    [[ ! -d $libraries ]] || return 0
    mkdir -p -- "$libraries.new"
    step "building Qt and other libraries for Windows (once, about half an hour)" "$cache/logs/windows-libraries.log" \
        sandbox --unshare-ipc --bind "$libraries.new" /opt/windows -- scripts/windows/make_libraries.sh /opt/windows
    mv -T -- "$libraries.new" "$libraries"
}

command_test_windows() { # [PATTERN]
    enter_root_of windows
    build_preset windows
    run_tests windows "${1:-}" scripts/windows/with_wine.sh
}
