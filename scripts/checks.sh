# shellcheck shell=bash
# The project's rules that a machine can see. Sourced by ./test; each check prints what breaks it and fails.

# project_files PATTERN...: files that are in the repository or would be, one a line.
project_files() {
    git ls-files --cached --others --exclude-standard --deduplicate -- "$@" | while read -r file; do
        [ ! -e "$file" ] || echo "$file"
    done
}

# none MESSAGE: passes standard input through; anything in it is a breach.
none() {
    local breaches
    breaches=$(cat)
    [ -n "$breaches" ] || return 0
    printf '%s:\n  %s\n' "$1" "${breaches//$'\n'/$'\n'  }"
    return 1
}

# search PATTERN FILE-PATTERN...: lines that match, in the project's files.
search() {
    local pattern=$1
    shift
    project_files "$@" | tr '\n' '\0' | xargs -0 -r grep -nHIE -e "$pattern" || [ $? = 123 ] || [ $? = 1 ]
}

check_sizes() {
    project_files '*.cpp' '*.h' '*.qml' '*.py' '*.sh' | tr '\n' '\0' | xargs -0 -r wc -l |
        awk '$2 != "total" && $1 > 500 { print $2 ": " $1 " lines" }' | none "Files over 500 lines"
}

# folders CMAKELISTS: its folders in the order in which they may use one another.
folders() { sed -n '/^set(folders$/,/^)$/s/^    \([A-Za-z]*\)$/\1/p' "$1"; }

# Within a layer, a folder uses itself and those listed before it.
check_order() {
    local layer=$1 allowed='' folder
    for folder in $(folders "$layer/CMakeLists.txt"); do
        allowed="$allowed${allowed:+|}$folder"
        search "^#include \"$layer/" "$layer/$folder/*.cpp" "$layer/$folder/*.h" |
            grep -vE "#include \"$layer/($allowed)/" || true
    done | none "In $layer a folder uses one that stands below it in $layer/CMakeLists.txt"
}

check_arrows() {
    local failed=0
    search '^#include "(Kestro|Platforms)/' 'KestroCore/*' | none "KestroCore reaches upwards" || failed=1
    search '^#include "Platforms/' 'Kestro/*' | none "Kestro names the platform" || failed=1
    search '^#include [<"](xcb/|X11/|gio/|glib|QtDBus|QDBus|QX11)' 'Kestro/*' 'KestroCore/*' |
        none "The platform's own headers stand outside Platforms" || failed=1
    search '^#include [<"]Tests/' 'Kestro/*' 'KestroCore/*' 'Platforms/*' main.cpp |
        none "The program reaches into its tests" || failed=1
    check_order KestroCore || failed=1
    check_order Kestro || failed=1
    local headers
    headers=$(qmake6 -query QT_INSTALL_HEADERS)
    search '^#include <Q' 'KestroCore/*' | while IFS= read -r line; do
        local name=${line##*#include <}
        name=${name%%>*}
        [ -e "$headers/QtCore/${name#QtCore/}" ] || echo "$line"
    done | none "KestroCore knows no Qt but QtCore" || failed=1
    search '\b(Q_OS_[A-Z]+|Q_WS_[A-Z]+|__linux__|__unix__)\b' '*.cpp' '*.h' ':!Platforms' |
        none "Platform conditionals stand outside Platforms" || failed=1
    return "$failed"
}

check_words() {
    local failed=0
    search '\b[Ss]pecification\b|\b[s]pec\.md\b|\b[t]he spec\b|\bPart [0-9]+(\.[0-9]+)?\b' '*' |
        none "Words that the project never uses" || failed=1
    search '\b(TOD[O]|FIXM[E]|XX[X]|HAC[K])\b' '*' ':!CONTRIBUTING.md' | none "Left for later" || failed=1
    return "$failed"
}

# Code waits for the thing itself; the harness has the one place that lets a moment pass between two looks.
# Excepted: SocketLoad, which stands idle to be measured.
check_sleeps() {
    search 'qSleep|qWait\(|QThread::[mu]?sleep|\bmsleep\(|sleep_for|sleep_until|\b(u|nano|clock_nano)?sleep\(' \
        '*.cpp' '*.h' '*.py' ':!Tests/Desktop/harness/waiting.py' \
        ':!Benchmarks/SocketLoad.cpp' |
        none "Code that sleeps"
}

# A preference that two features declare would be read with two defaults.
check_keys() {
    project_files 'Kestro/*Preference*.h' | while read -r file; do
        tr -s '\n ' ' ' <"$file" | grep -oE '\b(Key|QLatin1StringView)\( ?"[^"]+"' | sed 's/.*( \?//' | sort -u || true
    done | sort | uniq -d | none "Preference keys that are declared in two places"
}

lines() { project_files "$@" | tr '\n' '\0' | xargs -0 -r cat | grep -c '[^[:space:]]' || true; }

# The share of tests in tenths of a percent: no less than a quarter, no more than 32 %.
share_least=250
share_most=320

check_share() {
    local sources=('*.cpp' '*.h' '*.qml' '*.py' '*.sh' run test Tests/Desktop/desk) all tests
    all=$(lines "${sources[@]}")
    tests=$(lines 'Tests/*.cpp' 'Tests/*.h' 'Tests/*.qml' 'Tests/*.py' 'Tests/*.sh' Tests/Desktop/desk)
    local share=$((1000 * tests / (all > 0 ? all : 1)))
    echo "Tests are $((share / 10)).$((share % 10)) % of the code: $tests of $all lines."
    if [ "$share" -lt "$share_least" ] || [ "$share" -gt "$share_most" ]; then
        echo "Between $((share_least / 10)).$((share_least % 10)) and $((share_most / 10)).$((share_most % 10)) % is asked."
        return 1
    fi
}

check_shell() {
    # Unreachable: functions that only a trap calls. Unused: the lists that others read. Single quotes: meant.
    shellcheck --external-sources --exclude=SC2317,SC2034,SC2016 \
        run test .ci/run Tests/Desktop/desk scripts/*.sh
}

# The types that are written in C++ are known from the build. Disabled: what QML's missing types (`property var`) set off.
check_views() {
    [ -e build/test/qml/Kestro/KestroFeatures.qmltypes ] || { echo "The views are checked behind a build." && return 1; }
    local views
    mapfile -t views < <(project_files '*.qml')
    "$(qmake6 -query QT_INSTALL_BINS)/qmllint" -I build/test/qml --multiline-strings warning \
        --multiple-attached-objects warning --type disable --unqualified disable --compiler disable "${views[@]}"
}

check_format() {
    project_files '*.cpp' '*.h' | tr '\n' '\0' | xargs -0 -r clang-format-16 --dry-run -Werror
}

check_rules() {
    local failed=0 check
    for check in check_sizes check_arrows check_words check_sleeps check_keys check_share check_shell check_views; do
        "$check" || failed=1
    done
    return "$failed"
}
