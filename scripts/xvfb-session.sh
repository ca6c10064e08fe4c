# Sourced by the screenshot scripts: a virtual X display, the scripted test
# server, and a program folder in $work/app whose site book names it.
# Expects root, bin, display, screen and out to be set; sets work, pids, port.
work=$(mktemp -d)
pids=()

cleanup() {
  for ((i = ${#pids[@]} - 1; i >= 0; i--)); do kill "${pids[i]}" 2>/dev/null || true; done
  wait 2>/dev/null || true
  rm -rf "$work"
}
trap cleanup EXIT

mkdir -p "$out"
Xvfb "$display" -screen 0 "$screen" -nolisten tcp >/dev/null 2>&1 &
pids+=($!)
export DISPLAY=$display
for _ in $(seq 50); do xdotool getdisplaygeometry >/dev/null 2>&1 && break; sleep 0.1; done

python3 "$root/scripts/fake_mud.py" --port-file "$work/port" >/dev/null &
pids+=($!)
for _ in $(seq 50); do [ -s "$work/port" ] && break; sleep 0.1; done
port=$(cat "$work/port")

mkdir "$work/app"
cp "$bin" "$work/app/kelpa"
printf 'SITE=Test server\r\nSSNA=test\r\nSDNS=127.0.0.1\r\nSDNA=\r\nSDP_=%s\r\nSAP_=0\r\nSTRI=\r\nSDSC=\r\nScripted server\r\n#\r\n' \
  "$port" >"$work/app/CONN.ZIG"
