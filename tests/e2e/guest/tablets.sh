#!/bin/bash
# Guest side of e2e_like_tablets and e2e_six_tablets (README.md): tablets.sh like|slots SCRIBORA_BINARY BUILD_DIR
# shellcheck source=SCRIPTDIR/lib.sh
. "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

scribora_install_conf "$3" || exit 1
if [ "$1" = like ]; then
    # the right half of the tablet (hundredths of an inch), saved for the model of both tablets
    /usr/bin/python3 - "$SCRIBORA_CONF_DIR/config.xml" <<'PY' || exit 1
import sys, xml.etree.ElementTree as ET
tree = ET.parse(sys.argv[1])
panel = tree.getroot().find("QTB0610/Common/TabletPannel")
for name, value in zip(("TX", "TY", "TW", "TH"), ("515", "0", "515", "582")):
    panel.find(name).text = value
tree.write(sys.argv[1], encoding="UTF-8", xml_declaration=True)
PY
fi
scribora_start "$2" && pen_node || exit 1
# The hot-plug listener starts right after the virtual devices exist.
sleep 2
names=()
[ "$1" = slots ] && names=("$E2E_OUT/slots.names")
probe "$1" "$PEN_NODE" "$E2E_OUT/$1.events" "${names[@]}" || status=1
scribora_alive "at the end" || status=1
scribora_stop || status=1
exit "$status"
