#!/usr/bin/env bash
# Runs `corlith-gallery --screenshot` into a fresh folder and checks that every window of
# `--list` left a non-empty PNG with more than one colour in it. Exits 77 (skipped) when
# there is no display.
set -euo pipefail
gallery=$1
out=$2
if [ -z "${DISPLAY:-}" ]; then
  echo "no display: gallery screenshots skipped"
  exit 77
fi
rm -rf "$out"
mkdir -p "$out"
"$gallery" --screenshot "$out"
status=0
count=0
while IFS= read -r name; do
  count=$((count + 1))
  png="$out/$name.png"
  if [ ! -s "$png" ] || [ "$(head -c 8 "$png" | od -An -tx1 | tr -d ' \n')" != 89504e470d0a1a0a ]; then
    echo "FAILED: $name: no PNG at $png"
    status=1
    continue
  fi
  if command -v identify >/dev/null; then
    colours=$(identify -format '%k' "$png")
    if [ "$colours" -le 1 ]; then
      echo "FAILED: $name: the picture is one flat colour"
      status=1
    fi
  fi
done < <("$gallery" --list)
[ "$count" -gt 0 ] || { echo "FAILED: the gallery lists no window"; exit 1; }
echo "$count windows, $(find "$out" -name '*.png' | wc -l) pictures"
exit "$status"
