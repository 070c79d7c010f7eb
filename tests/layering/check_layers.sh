#!/usr/bin/env bash
# Every header a library includes belongs to that library or to one below it:
# window, device link, pipeline, input engine, then records, shared types and services.
#   check_layers.sh SOURCE_DIR
set -u
src=$1/src
declare -A below=(
    [types]="" [profiles]="types" [services]="" [input]="types profiles services"
    [pipeline]="input types profiles services" [device]="pipeline input types profiles services"
    [ui]="device pipeline input types profiles services"
)
failures=0
for library in "${!below[@]}"; do
    while IFS=: read -r file header; do
        owner=$(find "$src" -name "$header" -print -quit)
        [ -n "$owner" ] || continue # generated: moc, uic, the catalogue
        owner=${owner#"$src"/}
        owner=${owner%%/*}
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
