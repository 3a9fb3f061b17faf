# shellcheck shell=bash
# Building, and the two programs that show the module in a real OBS. Sourced; expects common.sh, root.sh, sandbox.sh.

# C++ files of the checkout that are not ignored, committed or not, as paths relative to it.
cpp_files() {
    local path
    git -c "safe.directory=$checkout" -C "$checkout" ls-files -z --cached --others --exclude-standard -- '*.cpp' '*.h' |
        while IFS= read -r -d '' path; do
            [[ ! -f $checkout/$path ]] || printf '%s\n' "$path"
        done
}

# Everything from here on happens in the root that a preset is for.
enter_root_of() { # PRESET
    case $1 in
        stable | windows) use_root "$1" ;;
    esac
    ensure_root
    [[ $1 != windows ]] || use_windows_libraries
}

build_preset() { # PRESET
    local preset=$1
    case $preset in
        development | release | bench | address | thread | fuzz | stable | windows) ;;
        *) fail "there is no preset '$preset': ./dev help lists them" ;;
    esac
    configured_here "$preset" || configure_preset "$preset"
    step "building $preset" "$logs/build-$preset.log" in_root cmake --build --preset "$preset"
}

# A build folder belongs to the root that it was configured in.
configured_here() { # PRESET
    local stamp=$build/$1/.development-root
    [[ -f $build/$1/build.ninja && -f $stamp && $(<"$stamp") == "$root" ]]
}

configure_preset() { # PRESET
    step "configuring $1" "$logs/configure-$1.log" in_root cmake --fresh --preset "$1"
    printf '%s\n' "$root" >"$build/$1/.development-root"
}

command_demo() {
    ensure_root
    build_preset development
    rm -rf -- "$build/demo"
    mkdir -p -- "$build/demo"
    local log=$logs/demo.log started=$SECONDS
    in_root build/development/demo/tour/quillmar-demo-tour --output build/demo </dev/null 2>"$log" ||
        fail "the tour found something wrong after $((SECONDS - started)) s: look at the table above and read $log"
    printf 'tour: done in %d s, screenshots in %s\n' $((SECONDS - started)) "$build/demo"
}

command_run() {
    ensure_root
    local options
    mapfile -t options < <(display_options)
    ((${#options[@]} > 0)) ||
        fail "run needs a display: start it in a desktop session (DISPLAY or WAYLAND_DISPLAY), or call ./dev demo"
    build_preset development
    mkdir -p -- "$build/demo"
    sandbox "${options[@]}" -- build/development/demo/tour/quillmar-demo-run
}

# Lets the sandbox reach the user's own display, sound and graphics; prints nothing when there is no local display.
display_options() {
    local runtime=/run/user/$sandbox_user x_socket=/tmp/.X11-unix/X device
    local display=${DISPLAY:-} wayland=${WAYLAND_DISPLAY:-} host_runtime=${XDG_RUNTIME_DIR:-}
    display=${display%.*}
    if [[ $display == :* && -S $x_socket${display#:} ]]; then
        printf '%s\n' --ro-bind "$x_socket${display#:}" "$x_socket${display#:}" \
            --setenv DISPLAY "$display" --setenv QT_QPA_PLATFORM xcb
        [[ ! -r ${XAUTHORITY:-$HOME/.Xauthority} ]] ||
            printf '%s\n' --ro-bind "${XAUTHORITY:-$HOME/.Xauthority}" /run/xauthority --setenv XAUTHORITY /run/xauthority
    elif [[ -n $wayland && -S $host_runtime/$wayland ]]; then
        printf '%s\n' --ro-bind "$host_runtime/$wayland" "$runtime/$wayland" \
            --setenv WAYLAND_DISPLAY "$wayland" --setenv QT_QPA_PLATFORM wayland
    else
        return 0
    fi
    [[ ! -S $host_runtime/pulse/native ]] ||
        printf '%s\n' --ro-bind "$host_runtime/pulse/native" "$runtime/pulse/native"
    for device in /dev/dri /dev/video[0-9]*; do
        printf '%s\n' --dev-bind-try "$device" "$device"
    done
    printf '%s\n' --ro-bind-try /sys /sys
}
