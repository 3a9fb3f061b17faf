# shellcheck shell=bash
# Running tests and counting them. Sourced; expects common.sh, root.sh, sandbox.sh, programs.sh.

command_test() { # [--preset PRESET | --root ROOT] [PATTERN]
    local preset=development
    case "${1:-} ${2:-}" in
        '--preset development' | '--preset address' | '--preset thread' | '--root stable')
            preset=$2
            shift 2
            ;;
        --*) fail "test takes --preset development, address or thread, or --root stable, not '$1 ${2:-}'" ;;
    esac
    enter_root_of "$preset"
    build_preset "$preset"
    run_tests "$preset" "${1:-}"
}

# The last line says how many test functions passed and failed, each row of data counted by itself.
run_tests() { # PRESET PATTERN [COMMAND-THAT-RUNS-IT...]
    local preset=$1 pattern=$2 log=$logs/test-$1.log started=$SECONDS status=0 selection=()
    case $preset in
        development) ;;
        windows) selection=(--label-regex '^(unit|windows|check)$') ;;
        *) selection=(--label-regex '^unit$') ;;
    esac
    [[ -z $pattern ]] || selection+=(--tests-regex "$pattern")
    shift 2
    printf 'testing %s ... ' "$preset" >&2
    sandbox --unshare-ipc \
        --setenv TSAN_OPTIONS "suppressions=/src/tests/tsan.supp ignore_noninstrumented_modules=1 history_size=7" \
        --setenv ASAN_OPTIONS "detect_stack_use_after_return=1 strict_string_checks=1" \
        --setenv UBSAN_OPTIONS print_stacktrace=1 \
        -- "$@" ctest --test-dir "build/$preset" --parallel "$(nproc)" --no-tests=error --verbose "${selection[@]}" \
        </dev/null >"$log" 2>&1 || status=$?
    printf 'done in %d s, log in %s\n' $((SECONDS - started)) "$log" >&2
    in_root python3 scripts/test_totals.py --exit-code "$status" "${log#"$checkout"/}"
}
