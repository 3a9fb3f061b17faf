# shellcheck shell=bash
# Running tests and counting them. Sourced; expects common.sh, root.sh, sandbox.sh, programs.sh.

command_test() { # [--preset PRESET] [PATTERN]
    local preset=development
    if [[ ${1:-} == --preset ]]; then
        preset=${2:-}
        (($# >= 2)) || fail "--preset wants the name of one: development, address or thread"
        shift 2
    fi
    case $preset in
        development | address | thread) ;;
        *) fail "tests run under the presets development, address and thread, not '$preset'" ;;
    esac
    ensure_root
    build_preset "$preset"
    run_tests "$preset" "${1:-}"
}

# The last line says how many test functions passed and failed, each row of data counted by itself.
run_tests() { # PRESET PATTERN
    local preset=$1 pattern=$2 log=$logs/test-$1.log started=$SECONDS status=0 selection=()
    [[ $preset == development ]] || selection=(--label-regex '^unit$')
    [[ -z $pattern ]] || selection+=(--tests-regex "$pattern")
    printf 'testing %s ... ' "$preset" >&2
    sandbox --unshare-ipc \
        --setenv TSAN_OPTIONS "suppressions=/src/tests/tsan.supp ignore_noninstrumented_modules=1 history_size=7" \
        --setenv ASAN_OPTIONS "detect_stack_use_after_return=1 strict_string_checks=1" \
        --setenv UBSAN_OPTIONS print_stacktrace=1 \
        -- ctest --test-dir "build/$preset" --parallel "$(nproc)" --no-tests=error --verbose "${selection[@]}" \
        </dev/null >"$log" 2>&1 || status=$?
    printf 'done in %d s, log in %s\n' $((SECONDS - started)) "$log" >&2
    in_root python3 scripts/test_totals.py --exit-code "$status" "${log#"$checkout"/}"
}
