#!/usr/bin/env bash
# Every header a library includes belongs to that library or to one below it:
# window, device link, pipeline, input engine, then records, shared types and services.
#   check_layers.sh SOURCE_DIR
set -u
src=$1/src
declare -A below=(
    [types]=""
    [profiles]="types"
    [services]=""
    [input]="types profiles services"
    [pipeline]="input types profiles services"
    [device]="pipeline input types profiles services"
    [ui]="device pipeline input types profiles services"
)

owner_of() {
    local found
    found=$(find "$src" -name "$1" -print -quit)
    [ -n "$found" ] || return 1
    found=${found#"$src"/}
    echo "${found%%/*}"
}

failures=0
for library in "${!below[@]}"; do
    while IFS=: read -r file header; do
        owner=$(owner_of "$header") || continue # generated: moc, uic, the catalogue
        case " $library ${below[$library]} " in
            *" $owner "*) ;;
            *)
                echo "FAIL: ${file#"$src"/} includes $header of $owner, above $library"
                failures=$((failures + 1))
                ;;
        esac
    done < <(grep -rEo '^#include "[^"]+"' "$src/$library" | sed -E 's/:#include "(.*)"$/:\1/')
done
[ "$failures" -eq 0 ] && echo "PASS: every include points down the layers"
exit $((failures > 0))
