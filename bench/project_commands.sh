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

# theirs_all.xml changes one parameter of every block, from_all.xml is the same under new keys:
# the merge and the import then restore, check and image every block.
sed -e 's|<HeatSetpoint>21<|<HeatSetpoint>20<|; s|<Gain>2.5<|<Gain>3<|; s|<Delay>30<|<Delay>31<|' \
    -e 's|<OnDelay>5<|<OnDelay>6<|; s|<FrostLimit>5<|<FrostLimit>6<|; s|<MinOnTime>60<|<MinOnTime>61<|' \
    base.xml > theirs_all.xml
sed 's/Key="Block\([0-9]*\)"/Key="New\1"/' theirs_all.xml > from_all.xml

# Wall time, and the CPU time (user + system) that the machine's other work does not inflate.
run() {
    /usr/bin/time -o time.txt -f '%e %U %S' "$zerbin" "$@" > /dev/null 2>&1 || true
    awk -v what="$*" 'END { printf "%-48s %6.0f ms wall %6.0f ms CPU\n", what, $1 * 1000, ($2 + $3) * 1000 }' \
        time.txt
}
run flat base.xml
run set ours.xml Block5000 Gain=3.5
run set theirs.xml Block5001 HighLimit=30
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
cp base.xml ours.xml
run merge base.xml ours.xml theirs_all.xml
cp base.xml ours.xml
"$zerbin" import ours.xml from.xml > /dev/null
run import ours.xml from_all.xml --update
ls -l base.xml | awk '{print "project: " $5 " bytes"}'
