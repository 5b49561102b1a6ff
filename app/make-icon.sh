#!/bin/sh
# Draws the program's icon, app/mavrel.ico, with ImageMagick: a tile of four textures in a dark frame.
set -eu
cd "$(dirname "$0")"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

convert -size 256x256 -depth 8 xc:none \
  -fill '#23303d' -draw 'roundrectangle 8,8 247,247 36,36' \
  -fill '#c4572f' -draw 'roundrectangle 28,28 123,123 10,10' \
  -fill '#8f3d22' -draw 'rectangle 28,56 123,62' -draw 'rectangle 28,90 123,96' \
  -draw 'rectangle 72,28 78,56' -draw 'rectangle 46,62 52,90' -draw 'rectangle 98,62 104,90' \
  -draw 'rectangle 72,96 78,123' \
  -fill '#4f9d4a' -draw 'roundrectangle 132,28 227,123 10,10' \
  -fill '#86c66a' -draw 'circle 160,58 178,58' -draw 'circle 202,92 216,92' -draw 'circle 198,48 206,48' \
  -fill '#3c86c8' -draw 'roundrectangle 28,132 123,227 10,10' \
  -fill '#9fd0f0' -draw 'polygon 28,200 62,160 88,196 104,178 123,204 123,217 113,227 38,227 28,217' \
  -fill '#e9e9e9' -draw 'roundrectangle 132,132 227,227 10,10' \
  -fill '#a8adb3' -draw 'rectangle 132,142 155,155' -draw 'rectangle 180,132 203,155' \
  -draw 'rectangle 156,156 179,179' -draw 'rectangle 204,156 227,179' -draw 'rectangle 132,180 155,203' \
  -draw 'rectangle 180,180 203,203' -draw 'rectangle 156,204 179,227' -draw 'rectangle 204,204 227,217' \
  -depth 8 "png32:$work/256.png"
for side in 48 32 16; do
  convert "$work/256.png" -filter Box -resize "${side}x${side}" "$work/$side.png"
done
convert "$work/256.png" "$work/48.png" "$work/32.png" "$work/16.png" -depth 8 mavrel.ico
