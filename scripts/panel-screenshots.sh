#!/usr/bin/env bash
# Starts Kelpa on a virtual X display against the scripted test server, plays
# its fight (status frames: hit points falling, the position changing) and
# takes screenshots of the status panel at the start size and enlarged, the
# Dbg page shown by a double click on Label11, and the other pages.
# Usage: scripts/panel-screenshots.sh [folder] (default /tmp/kelpa-panel).
# KELPA_DISPLAY picks the display (default :98). Needs Xvfb, xdotool, imagemagick.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
out=${1:-/tmp/kelpa-panel}
bin=${KELPA_BIN:-$root/build/kelpa}
display=${KELPA_DISPLAY:-:98}
screen=1280x1024x24
. "$root/scripts/xvfb-session.sh"

shot() { import -display "$display" -window "$wid" "$out/$1.png"; echo "wrote $out/$1.png"; }

(cd "$work/app" && exec ./kelpa) &
pids+=($!)

wid=$(xdotool search --sync --onlyvisible --name '^Kelpa$' | head -1)
sleep 1
xdotool mousemove --window "$wid" 60 88 click 1
sleep 1.5
xdotool mousemove --window "$wid" 400 300
xdotool type --delay 30 "fight"
xdotool key Return
# Mid-fight: a cell changed less than 500 ms ago is light.
sleep 1.1
shot panel-fighting
sleep 2.5
shot panel-after-fight

xdotool windowmove "$wid" 0 0
xdotool windowsize "$wid" 1200 900
sleep 1
shot panel-enlarged

# InfoTabs: two rows of two tabs, 300 and 278 pixels above the foot of
# the window; "Gen", "Other", then "Dbg" after a double click on Label11,
# which shows in the gap between the buttons Bulk and Flags.
geom=$(xdotool getwindowgeometry "$wid" | awk '/Geometry/ {print $2}')
w=${geom%x*}
h=${geom#*x}
xdotool mousemove --window "$wid" 100 $((h - 300)) click 1
sleep 0.4
shot panel-gen
xdotool mousemove --window "$wid" 35 $((h - 278)) click 1
sleep 0.4
shot panel-other
xdotool mousemove --window "$wid" $((w - 58)) $((h - 15)) click --repeat 2 --delay 80 1
xdotool mousemove --window "$wid" 100 $((h - 278)) click 1
sleep 0.4
shot panel-dbg
