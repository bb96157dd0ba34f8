# Completion of browsersweep for bash, also the old one of macOS.
# The words here are checked against the program's own parser by the tests.
# shellcheck shell=bash

# _browsersweep_command WORD...: the command among the words, values of options left out.
_browsersweep_command() {
    local is_value=no word
    for word in "$@"; do
        if [ $is_value = yes ]; then
            is_value=no
            [ "$word" != "=" ] || is_value=yes # the shell splits --option=value at the sign
            continue
        fi
        case $word in
        --home | --browser | -b | --profile | --category | -c | --html) is_value=yes ;;
        --include | --exclude | --inside | --outside | --filter) is_value=yes ;;
        --days | --last) is_value=yes ;;
        --kind | --by | --sort | --older-than | --keep | --keep-list) is_value=yes ;;
        browsers | profiles | size | clean | sites | forget | bookmarks | notifications | doctor | help)
            printf '%s\n' "$word"
            return
            ;;
        esac
    done
}

_browsersweep_options() {
    printf '%s\n' --home --json --help --version
    case $1 in help) return ;; esac
    printf '%s\n' --browser --profile --primary-only
    case $1 in
    "" | size | clean)
        printf '%s\n' --category --include --exclude --inside --outside --filter --ignore-errors
        printf '%s\n' --keep-going --days --last --strict
        ;;
    esac
    case $1 in "" | size | sites) printf '%s\n' --html ;; esac
    case $1 in "" | sites | forget) printf '%s\n' --kind ;; esac
    case $1 in "" | size | clean) printf '%s\n' --by ;; esac
    case $1 in "" | size | clean | sites) printf '%s\n' --sort ;; esac
    case $1 in "" | sites) printf '%s\n' --older-than ;; esac
    case $1 in "" | size | forget) printf '%s\n' --all ;; esac
    case $1 in "" | forget) printf '%s\n' --keep --keep-list --mixed --settings ;; esac
    case $1 in "" | clean | forget) printf '%s\n' --dry-run --yes --force --no-config ;; esac
    case $1 in "" | clean) printf '%s\n' --list ;; esac
}

# _browsersweep_offer WORDS: offers those that begin with what is typed.
_browsersweep_offer() {
    local word
    while IFS= read -r word; do
        [ -z "$word" ] || COMPREPLY+=("$word")
    done < <(compgen -W "$1" -- "$current")
}

# _browsersweep_offer_paths ACTION: offers files or folders, spaces and all.
_browsersweep_offer_paths() {
    local path
    if type compopt >/dev/null 2>&1; then compopt -o filenames 2>/dev/null; fi
    while IFS= read -r path; do
        COMPREPLY+=("$path")
    done < <(compgen -A "$1" -- "$current")
}

_browsersweep() {
    local browsers="quenbySecureBrowser tarrowSecureBrowser brave chromium firefox googleChrome
        microsoftEdge orvo brellisPrivateBrowser opera safari vivaldi yandexBrowser"
    local categories="cache history httpCookies flashCookies formData localStorage"
    local kinds="history downloads icons cookies siteStorage serviceWorkers cachedFiles openTabs
        formData settings networkState predictions"
    local commands="browsers profiles size clean sites forget bookmarks notifications doctor"
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} command
    COMPREPLY=()
    if [ "$current" = "=" ]; then
        current=""
    elif [ "$previous" = "=" ] && [ "$COMP_CWORD" -ge 2 ]; then
        previous=${COMP_WORDS[COMP_CWORD - 2]}
    fi
    case $previous in
    --browser | -b) _browsersweep_offer "$browsers" && return ;;
    --category | -c) _browsersweep_offer "$categories" && return ;;
    --kind) _browsersweep_offer "$kinds" && return ;;
    --by) _browsersweep_offer "browser category profile" && return ;;
    --sort) _browsersweep_offer "size name items last" && return ;;
    --home) _browsersweep_offer_paths directory && return ;;
    --html | --keep-list) _browsersweep_offer_paths file && return ;;
    --profile | --include | --exclude | --inside | --outside | --filter) return ;;
    --older-than | --keep | --last) return ;;
    --days) _browsersweep_offer "today yesterday" && return ;;
    esac
    command=$(_browsersweep_command "${COMP_WORDS[@]:1:COMP_CWORD-1}")
    case $current in
    -*) _browsersweep_offer "$(_browsersweep_options "$command")" ;;
    *)
        case $command in
        "") _browsersweep_offer "$commands help" ;;
        help) [ "$previous" != help ] || _browsersweep_offer "$commands" ;;
        esac
        ;;
    esac
}

complete -F _browsersweep browsersweep
