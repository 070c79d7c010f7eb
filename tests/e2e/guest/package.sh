#!/bin/bash
# shellcheck disable=SC2317  # the checks below run through expect
# Guest side of e2e_package (README.md): package.sh DEB_NAME SCRIBORA_BINARY BUILD_DIR
# shellcheck source=SCRIPTDIR/lib.sh
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

deb="$3/$1" user=artist conf="$SCRIBORA_CONF_DIR"

# a command's prefix that runs it as $user, with the environment of the user's session
as_user=(/usr/bin/setpriv --reuid="$user" --regid="$user" --init-groups
    env HOME="/home/$user" USER="$user" XDG_RUNTIME_DIR="/tmp/runtime-$user")
# entry_exec FILE: the Exec line of a desktop entry
entry_exec() { sed -n 's/^Exec=//p' "$1"; }
# config.xml was root's: the user's save writes a new file in the folder
saved_by_user() { [ "$(stat -c %U:%G "$conf/config.xml")" = "$user:plugdev" ]; }
only_config_left() { [ "$(find /usr/lib/scribora -type f)" = "$conf/config.xml" ] && [ ! -e /usr/lib/udev/rules.d/60-scribora.rules ]; }

# The harness's udevd resolves no group names; a desktop's does.
udevadm control --exit && /lib/systemd/systemd-udevd --daemon > /dev/null 2>&1 &&
    wait_for 30 udevadm control --ping || exit 1
# apt resolves the declared dependencies against what is installed; the guest has no network,
# so the recommended xdg-utils is left out.
apt_get() { DEBIAN_FRONTEND=noninteractive apt-get -y -q --no-install-recommends "$@" > /dev/null; }
expect "apt installs the package from its file" apt_get install "$deb" || exit 1
# The seat half of the rules: a login manager (absent here) gives nodes tagged uaccess to the
# user at the seat; what the rules can show is that both nodes carry the tag.
tablet_node() {
    local d
    for d in /sys/bus/usb/devices/*; do
        [ "$(cat "$d/idVendor" 2> /dev/null)" = 5a3c ] || continue
        printf '/dev/bus/usb/%03d/%03d\n' "$(cat "$d/busnum")" "$(cat "$d/devnum")"
    done | head -n 1
}
tagged() { udevadm info --query=property --name="$1" | grep -q '^CURRENT_TAGS=.*:uaccess:'; }
expect "the tablet's USB node is tagged uaccess" tagged "$(tablet_node)"
expect "/dev/uinput is tagged uaccess" tagged /dev/uinput
useradd --create-home --groups plugdev "$user" && install -d -o "$user" -m 0700 "/tmp/runtime-$user" || exit 1

# Started as the desktop starts it at login, by the autostart entry's command line: only the
# udev rules let it open the tablet and /dev/uinput, and the folder's rights let it save.
x11_start || exit 1
# shellcheck disable=SC2046  # the Exec line's words
scribora_start "${as_user[@]}" $(entry_exec /etc/xdg/autostart/scribora.desktop) || exit 1
reply="$(emuctl wait-out tab1 "$E2E_WAIT_S" 02b0)" || { guest_log "no start packet on tab1: $reply"; exit 1; }
pen_node || exit 1
expect "the driver runs as $user" test "$(stat -c %U "/proc/$SCRIBORA_PID")" = "$user"
probe stroke "$PEN_NODE" "$E2E_OUT/pen-stroke.events" || status=1
expect "started with /mini, no window is mapped" x11_mapped 0
# shellcheck disable=SC2046
timeout 60 "${as_user[@]}" $(entry_exec /usr/share/applications/scribora.desktop) > "$E2E_OUT/menu-start.log" 2>&1
expect "a start from the menu brings the window up" x11_window_id

scribora_stop || status=1
expect "$user saved config.xml on SIGTERM" saved_by_user
cp "$conf/config.xml" /tmp/saved.xml
expect "an upgrade keeps the user's config.xml" dpkg -i "$deb"
expect "... unchanged" cmp "$conf/config.xml" /tmp/saved.xml
expect "a removal leaves only the user's config.xml" apt_get remove scribora
expect "... and no other file of the package" only_config_left
expect "a purge leaves nothing" apt_get purge scribora
expect "... not even the folder" test ! -e /usr/lib/scribora
exit "$status"
