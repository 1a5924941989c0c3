#!/bin/bash
# Times each project command of zerbin on a generated project of 10,000 blocks of the shipped
# types, in the studio's format (keys, export indexes, a wire into every other block):
#   bench/project_commands.sh [BUILD_DIR]
set -euo pipefail
build=${1:-build}
zerbin=$(realpath "$build/cli/zerbin")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"

types=(THERMOSTAT PID_LOOP ALARM_LIMITS TIME_DELAY SETPOINT_UNIT ROOM_CONTROLLER FAN_STAGE)
for type in "${types[@]}"; do
    "$zerbin" save "$type" > "$type.xml"
done
python3 - "${types[@]}" <<'PY'
import sys, xml.etree.ElementTree as ET
blocks = [ET.parse(t + ".xml").getroot()[0] for t in sys.argv[1:]]
root = ET.Element("Project", UnitSystem="SI", ShortFloat="0")
for n in range(10000):
    block = ET.fromstring(ET.tostring(blocks[n % len(blocks)]))
    block.set("Key", f"Block{n + 1}")
    block.set("ExportIndex", str(n))
    block.find("UserName").text = f"Block {n + 1}"
    if n % 2 and block.tag == "TIME_DELAY":
        ET.SubElement(block, "Connection", Input="Reset", Source=f"Block{n}", Output="Out")
    root.append(block)
ET.ElementTree(root).write("base.xml", xml_declaration=True, encoding="utf-8")
PY
# Once through the project file service, so that every file below has its layout.
"$zerbin" reset base.xml Block1 && rm -f base.xml~
cp base.xml ours.xml && cp base.xml theirs.xml && cp base.xml from.xml

run() {
    local start end
    start=$(date +%s%N)
    "$zerbin" "$@" > /dev/null 2>&1 || true
    end=$(date +%s%N)
    printf '%-48s %6d ms\n' "$*" $(((end - start) / 1000000))
}
run flat base.xml
run set ours.xml Block5000 HeatSetpoint=19
run set theirs.xml Block5001 Mode=1
run diff base.xml ours.xml
run merge base.xml ours.xml theirs.xml
run copy ours.xml Block1 Block8 Block15
run reset ours.xml Block1
run reset ours.xml
"$zerbin" reset theirs.xml > /dev/null
run merge base.xml from.xml theirs.xml
sed -i 's/Key="Block\([0-9]*\)"/Key="New\1"/' from.xml
run import ours.xml from.xml
run import ours.xml from.xml --update
ls -l base.xml | awk '{print "project: " $5 " bytes"}'
