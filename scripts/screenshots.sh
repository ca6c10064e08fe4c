#!/usr/bin/env bash
# Starts Kelpa on a virtual X display against the scripted test server,
# connects, types a command, and takes screenshots at the start size and
# after enlarging the window. Usage: scripts/screenshots.sh [folder]
# (default /tmp/kelpa-shots). Needs Xvfb, xdotool and imagemagick.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
out=${1:-/tmp/kelpa-shots}
bin=${KELPA_BIN:-$root/build/kelpa}
display=:99
screen=1280x800x24
. "$root/scripts/xvfb-session.sh"

shot() { import -display "$display" -window root "$out/$1.png"; echo "wrote $out/$1.png"; }

# Two macros for the editor's list.
mkdir -p "$work/app/macros"
printf 'kill %%1\r\n#SV TARGET %%1\r\n#ECHO 2 fighting %%1\r\n' >"$work/app/macros/fight.macro"
printf 'say hello %%1\r\n' >"$work/app/macros/greet.macro"
# Triggers: one answers the banner, one is the editor's template, one global.
mkdir -p "$work/app/triggers" "$work/app/gtriggers"
printf 'pattern1=Welcome to the Kelpa\r\naction=wave\r\n' >"$work/app/triggers/greet.trigger"
printf 'flag1=1\r\npattern1=?\r\naction=#nop\r\npattern1=?\r\naction=#nop\r\n' >"$work/app/triggers/template.trigger"
printf 'pattern1=hp\r\npattern1=50m\r\naction=#E 2 prompt seen\r\n' >"$work/app/gtriggers/prompt.trigger"
(cd "$work/app" && exec ./kelpa) &
pids+=($!)

wid=$(xdotool search --sync --onlyvisible --name '^Kelpa$' | head -1)
sleep 1
shot 01-start

# Connect: the button stands at (240,1200) twips, 1575 by 255.
xdotool mousemove --window "$wid" 60 88 click 1
sleep 1.5
shot 02-connected

# The command line has the focus after connecting; without a window
# manager the keyboard follows the pointer, so point into the window.
xdotool mousemove --window "$wid" 400 300
xdotool type --delay 30 "look around"
xdotool key Return
sleep 1
shot 03-command

xdotool windowmove "$wid" 0 0
xdotool windowsize "$wid" 1200 760
sleep 1
shot 04-enlarged

# Tabs of SSTab1: seven equal tabs from x 136 at the enlarged width.
tabw=$(((1200 - 136 - 4) / 7))
xdotool mousemove --window "$wid" $((136 + tabw + tabw / 2)) 20 click 1
sleep 0.5
shot 05-system
xdotool mousemove --window "$wid" $((136 + 6 * tabw + tabw / 2)) 20 click 1
sleep 0.5
shot 06-tools
# The page "Triggers" of the tool tabs, just right of "History".
toolw=$(((1200 - 136 - 4 - 14) / 3))
xdotool mousemove --window "$wid" $((144 + toolw + toolw / 2)) 44 click 1
sleep 0.5
shot 07-triggers
# Open "greet.trigger", the first entry of the list, with a double click.
xdotool mousemove --window "$wid" 570 131 click --repeat 2 --delay 80 1
sleep 0.5
shot 07b-trigger-open
xdotool mousemove --window "$wid" $((144 + 2 * toolw + toolw / 2)) 44 click 1
sleep 0.5
shot 08-macros
# Open "fight.macro", the first entry of the list, with a double click.
xdotool mousemove --window "$wid" 575 95 click --repeat 2 --delay 80 1
sleep 0.5
shot 08b-macro-open

# Back to "Main"; send two lines through the Bulk dialog.
xdotool mousemove --window "$wid" $((136 + tabw / 2)) 20 click 1
xdotool mousemove --window "$wid" 1110 740 click 1
bid=$(xdotool search --sync --onlyvisible --name '^Bulk$' | head -1)
xdotool mousemove --window "$bid" 200 100
xdotool type --delay 30 "north"
xdotool key Return
xdotool type --delay 30 "south"
sleep 0.5
shot 09-bulk
# Its Send button stands at (7080,5100) twips.
xdotool mousemove --window "$bid" 512 352 click 1
sleep 1
shot 10-after-bulk

# Keyword lines and a macro call: a flag label, a flag, a window label.
xdotool mousemove --window "$wid" 400 738 click 1
for line in "#lf 0 hunting" "#sf 3" "#lw 1 hunt" "@fight orc"; do
  xdotool type --delay 20 "$line"
  xdotool key Return
done
sleep 0.5
shot 10b-keywords

# The flags dialog: tick flag 0 (top left), then Escape on it.
xdotool mousemove --window "$wid" 1165 740 click 1
fid=$(xdotool search --sync --onlyvisible --name '^Flags$' | head -1)
xdotool mousemove --window "$fid" 20 20 click 1
sleep 0.5
shot 11-flags
xdotool key Escape
sleep 0.3

# The debug switch on, then a command whose prompt leaves debug lines.
xdotool mousemove --window "$wid" $((136 + tabw + tabw / 2)) 20 click 1
xdotool mousemove --window "$wid" 154 701 click 1
xdotool mousemove --window "$wid" 400 738 click 1
xdotool type --delay 30 "score"
xdotool key Return
sleep 1
shot 12-debug
