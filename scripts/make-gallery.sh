#!/usr/bin/env bash
# Renders every symbology this build provides to PNG and SVG in OUT_DIR and writes
# OUT_DIR/index.html, which shows each picture with the command that made it.
# Usage: make-gallery.sh CLI OUT_DIR
set -euo pipefail
cli=${1:?usage: make-gallery.sh CLI OUT_DIR}
out=${2:?usage: make-gallery.sh CLI OUT_DIR}
mkdir -p "$out"
export BARCODE_ORV_QUIET=1

# name | symbology | text | extra options [| png: no SVG form]
samples=(
  "code39|code39|ABC-1234|--width 300 --height 100"
  "code39-no-asterisks|code39|CODE 39|--width 360 --height 100 --show-start-stop 0"
  "code93|code93|CODE93 TEST|--width 320 --height 100"
  "code128-auto|code128|Code128 abc-123456|--width 400 --height 100"
  "code128-set-c|code128|1234567890|--width 300 --height 100 --code-mode C"
  "code128-odd-digits|code128|12345|--width 300 --height 100"
  "nw7|nw7|A1234-5678B|--width 360 --height 100"
  "nw7-hidden-start-stop|nw7|a123b|--width 300 --height 100 --show-start-stop 0"
  "matrix2of5|matrix2of5|1234567890|--width 360 --height 100"
  "nec2of5|nec2of5|1234567890|--width 360 --height 100"
  "itf|itf|12345678901231|--width 360 --height 100"
  "itf-odd-length|itf|123456789|--width 300 --height 100"
  "jan13|jan13|4901234567894|--width 300 --height 120"
  "jan13-plain-guards|jan13|490123456789|--width 300 --height 120 --extended-guard 0"
  "jan13-book-add-on|jan13|978410109205+90000|--width 420 --height 120"
  "jan8|jan8|4912345|--width 200 --height 100"
  "upca|upca|03600029145|--width 330 --height 120"
  "upca-magazine-add-on|upca|036000291452+12|--width 400 --height 120"
  "upce|upce|0123456|--width 220 --height 100"
  "gs1-128|gs1-128|(01)04912345678904(10)ABC123(17)251231|--width 520 --height 120"
  "gs1-128-convenience|gs1-128|9191234512345678901234567890123425013102500|--width 600 --height 240 --draw convenience"
  "databar14|databar14|0950110153000|--width 300 --height 110"
  "databar14-stacked|databar14|0950110153000|--width 200 --height 110 --symbol-type-14 STACKED"
  "databar14-stacked-omni|databar14|0950110153000|--width 300 --height 220 --symbol-type-14 STACKED_OMNIDIRECTIONAL"
  "databar-limited|databar-limited|1501234567890|--width 300 --height 110|png"
  "databar-expanded|databar-expanded|(01)98898765432106(3202)012345(15)991231|--width 700 --height 110 --text-font-scale 0.8"
  "databar-expanded-stacked|databar-expanded|(01)98898765432106(3202)012345(15)991231(10)ABC123|--width 600 --height 260 --draw stacked --text-font-scale 0.5"
  "databar-expanded-stacked-3|databar-expanded|(01)04912345678904(10)abc(17)251231|--width 600 --height 200 --draw stacked --no-of-columns 3 --text-font-scale 0.6"
  "yubin|yubin|10000131-3-2-503|--height 30"
  "qr-url|qr|https://example.com/barcode?id=12345|--width 300 --height 300"
  "qr-level-h|qr|HELLO QR CODE LEVEL H|--width 300 --height 300 --error-correction H"
  "qr-numeric|qr|31415926535897932384626433832795028841971|--width 300 --height 300 --encode-mode NUMERIC"
  "qr-shift-jis|qr|バーコード生成ライブラリ|--width 300 --height 300 --string-encoding shift-jis"
  "qr-version-10|qr|fixed version ten|--width 400 --height 400 --version 10 --fg 20,40,120"
  "qr-fit-width|qr|fit-width: modules spread over the box|--width 250 --height 250 --fit-width"
  "qr-rect-thin|qr|rectangular box, thinned modules|--width 320 --height 200 --px-adjust-black -1 --bg 255,250,230"
)

html="$out/index.html"
{
  echo '<!DOCTYPE html>'
  echo '<html lang="en"><head><meta charset="utf-8"><title>libbarcode_orv gallery</title>'
  echo '<style>body{font-family:sans-serif;margin:2em;background:#f4f4f4}'
  echo 'figure{display:inline-block;vertical-align:top;background:#fff;margin:0 1em 1em 0;padding:1em;border:1px solid #ccc}'
  echo 'img{border:1px dashed #bbb;margin-right:1em}figcaption{margin-top:.5em;font-size:90%}code{display:block;margin:.2em 0}</style>'
  echo '</head><body><h1>libbarcode_orv gallery</h1>'
  echo '<p>Each symbol is drawn by the command-line tool; PNG on the left, SVG on the right.</p>'
} > "$html"

escape() { sed -e 's/&/\&amp;/g' -e 's/</\&lt;/g' -e 's/>/\&gt;/g' -e 's/"/\&quot;/g'; }

rendered=0
skipped=()
for sample in "${samples[@]}"; do
  IFS='|' read -r name symbology text options formats <<< "$sample"
  # shellcheck disable=SC2206
  extra=($options)
  png_cmd=("$cli" "${extra[@]}" --format png --output "$out/$name.png" "$symbology" "$text")
  svg_cmd=("$cli" "${extra[@]}" --format svg --output "$out/$name.svg" "$symbology" "$text")
  # A fifth field "png" marks a symbology without an SVG form.
  if [ "$formats" = "png" ]; then svg_cmd=(true); fi
  if ! "${png_cmd[@]}" 2> "$out/$name.log" || ! "${svg_cmd[@]}" 2>> "$out/$name.log"; then
    if grep -q "not provided" "$out/$name.log"; then
      skipped+=("$name")
      rm -f "$out/$name.log" "$out/$name.png" "$out/$name.svg"
      continue
    fi
    cat "$out/$name.log" >&2
    echo "make-gallery: $name failed" >&2
    exit 1
  fi
  rm -f "$out/$name.log"
  shown_png="barcode-orv ${options} --format png --output $name.png $symbology '$text'"
  shown_svg="barcode-orv ${options} --format svg --output $name.svg $symbology '$text'"
  {
    if [ "$formats" = "png" ]; then
      echo "<figure><img src=\"$name.png\" alt=\"$name PNG\">"
      echo "<figcaption><strong>$name</strong> (no SVG form)"
      echo "<code>$(printf '%s' "$shown_png" | escape)</code>"
    else
      echo "<figure><img src=\"$name.png\" alt=\"$name PNG\"><img src=\"$name.svg\" alt=\"$name SVG\">"
      echo "<figcaption><strong>$name</strong>"
      echo "<code>$(printf '%s' "$shown_png" | escape)</code><code>$(printf '%s' "$shown_svg" | escape)</code>"
    fi
    echo "</figcaption></figure>"
  } >> "$html"
  rendered=$((rendered + 1))
done

echo '</body></html>' >> "$html"
echo "gallery: $rendered symbols in $out/index.html"
if [ ${#skipped[@]} -gt 0 ]; then
  echo "gallery: not provided by this build: ${skipped[*]}"
fi
