#!/usr/bin/env bash
# Runs a user-interface test program on a display of its own: a private Xvfb server
# (chosen with -displayfd, so parallel tests never race for a display number), or the
# caller's display when CORLITH_TEST_DISPLAY=inherit. Without Xvfb and without a
# display the program still runs, and its tests skip themselves saying why.
set -u
if [ "${CORLITH_TEST_DISPLAY:-}" = inherit ] || ! command -v Xvfb >/dev/null; then
  exec "$@"
fi
work=$(mktemp -d)
Xvfb -displayfd 3 -screen 0 1280x1024x24 -nolisten tcp 3>"$work/display" 2>"$work/xvfb.log" &
server=$!
for _ in $(seq 200); do
  [ -s "$work/display" ] && break
  kill -0 "$server" 2>/dev/null || break
  sleep 0.02
done
display=$(cat "$work/display" 2>/dev/null)
if [ -z "$display" ]; then
  echo "with-display: Xvfb did not start:" >&2
  cat "$work/xvfb.log" >&2
  rm -rf "$work"
  unset DISPLAY
  exec "$@"
fi
DISPLAY=":$display" NO_AT_BRIDGE=1 DBUS_SESSION_BUS_ADDRESS=disabled: GDK_BACKEND=x11 "$@"
status=$?
kill "$server" 2>/dev/null
wait "$server" 2>/dev/null
rm -rf "$work"
exit "$status"
