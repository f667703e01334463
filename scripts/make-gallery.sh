#!/usr/bin/env bash
# Renders every symbology this build provides to PNG and SVG in OUT_DIR and writes
# OUT_DIR/index.html: a grid of cards, each picture with the command that made it, as it
# can be pasted, and what an independent reader (ZXing-cpp, through READER) finds in that
# very PNG file.
# Usage: make-gallery.sh CLI OUT_DIR [READER]
set -euo pipefail
cli=${1:?usage: make-gallery.sh CLI OUT_DIR [READER]}
out=${2:?usage: make-gallery.sh CLI OUT_DIR [READER]}
reader=${3:-$(dirname "$cli")/barcode-orv-read}
mkdir -p "$out"
export BARCODE_ORV_QUIET=1

# The symbologies, from the tool's --list: provided[name] is "yes" or "no".
declare -A provided
while read -r _ name is_provided _; do
  provided[$name]=$is_provided
done < <("$cli" --list | tail -n +2)

# section | name | symbology | text | options | note. Cards outside "Compatibility forms"
# use the tool's default, the standard profile: quiet zones, standard encodings, and only
# symbols that read back as their text. "compat" marks a card drawn with --compat.
samples=(
  "Linear|code39|code39|ABC-1234|--width 360 --height 100"
  "Linear|code39-no-asterisks|code39|CODE 39|--width 400 --height 100 --show-start-stop 0"
  "Linear|code93|code93|CODE93 TEST|--width 360 --height 100"
  "Linear|code128-auto|code128|Code128 abc-123456|--width 440 --height 100"
  "Linear|code128-set-c|code128|1234567890|--width 300 --height 100 --code-mode C"
  "Linear|nw7|nw7|A1234-5678B|--width 400 --height 100"
  "Linear|nw7-hidden-start-stop|nw7|a123b|--width 300 --height 100 --show-start-stop 0"
  "Linear|itf|itf|12345678901231|--width 400 --height 100"
  "Linear|itf-odd-length|itf|123456789|--width 300 --height 100"
  "Retail and GS1|jan13|jan13|4901234567894|--width 300 --height 120"
  "Retail and GS1|jan13-plain-guards|jan13|490123456789|--width 300 --height 120 --extended-guard 0"
  "Retail and GS1|jan13-book-add-on|jan13|978410109205+90000|--width 440 --height 120"
  "Retail and GS1|jan8|jan8|4912345|--width 220 --height 100"
  "Retail and GS1|upca|upca|03600029145|--width 330 --height 120"
  "Retail and GS1|upca-magazine-add-on|upca|036000291452+12|--width 420 --height 120"
  "Retail and GS1|upce|upce|0123456|--width 220 --height 100"
  "Retail and GS1|gs1-128|gs1-128|(01)04912345678904(10)ABC123(17)251231|--width 560 --height 120"
  "Retail and GS1|gs1-128-convenience|gs1-128|9191234512345678901234567890123425013102500|--width 640 --height 240 --draw convenience"
  "GS1 DataBar|databar14|databar14|0950110153000|--width 300 --height 110"
  "GS1 DataBar|databar14-stacked|databar14|0950110153000|--width 200 --height 110 --symbol-type-14 STACKED"
  "GS1 DataBar|databar14-stacked-omni|databar14|0950110153000|--width 300 --height 220 --symbol-type-14 STACKED_OMNIDIRECTIONAL"
  "GS1 DataBar|databar-limited|databar-limited|1501234567890|--width 300 --height 110|png only: DataBar Limited has no SVG form"
  "GS1 DataBar|databar-expanded|databar-expanded|(01)98898765432106(3202)012345(15)991231|--width 700 --height 110 --text-font-scale 0.8"
  "GS1 DataBar|databar-expanded-stacked|databar-expanded|(01)98898765432106(3202)012345(15)991231(10)ABC123|--width 600 --height 260 --draw stacked --text-font-scale 0.5"
  "GS1 DataBar|databar-expanded-stacked-3|databar-expanded|(01)04912345678904(10)abc(17)251231|--width 600 --height 200 --draw stacked --no-of-columns 3 --text-font-scale 0.6"
  "Postal|yubin|yubin|10000131-3-2-503|--height 30"
  "Two-dimensional|qr-url|qr|https://example.com/barcode?id=12345|--width 300 --height 300"
  "Two-dimensional|qr-level-h|qr|HELLO QR CODE LEVEL H|--width 300 --height 300 --error-correction H"
  "Two-dimensional|qr-numeric|qr|31415926535897932384626433832795028841971|--width 300 --height 300 --encode-mode NUMERIC"
  "Two-dimensional|qr-shift-jis|qr|バーコード生成ライブラリ|--width 300 --height 300 --string-encoding shift-jis"
  "Two-dimensional|qr-version-10|qr|fixed version ten|--width 400 --height 400 --qr-version 10 --fg 20,40,120"
  "Two-dimensional|qr-rect-widened|qr|rectangular box, widened modules|--width 320 --height 240 --px-adjust-black 1 --bg 255,250,230"
  "Compatibility forms|qr-rect-thin-compat|qr|rectangular box, thinned modules|--width 320 --height 240 --px-adjust-black -1 --bg 255,250,230 --compat|compat"
  "Two-dimensional|datamatrix-auto|datamatrix|Data Matrix ECC 200 from libbarcode_orv|--width 240 --height 240"
  "Two-dimensional|datamatrix-c40|datamatrix|LOT 4711-0815 EXP 2026-11|--width 240 --height 240 --encode-scheme C40"
  "Two-dimensional|datamatrix-rectangular|datamatrix|RECT 16x48 SYMBOL 2026|--width 500 --height 180 --code-size 16x48"
  "Two-dimensional|qr-kanji-segments|qr|東京駅 2026-11-24 ABC123 案内|--width 300 --height 300"
  "Two-dimensional|qr-gs1|qr|(01)09501101530003(17)261231(10)AB12|--width 300 --height 300 --gs1"
  "Two-dimensional|datamatrix-gs1|datamatrix|(01)09501101530003(17)261231(10)AB12|--width 240 --height 240 --gs1"
  "Two-dimensional|datamatrix-dmre|datamatrix|DMRE 8x96 LOT 4711 EXP 2026|--width 600 --height 80 --code-size 8x96"
  "Two-dimensional|datamatrix-shift-jis|datamatrix|データマトリックス 二次元コード|--width 240 --height 240 --string-encoding shift-jis"
  "Two-dimensional|pdf417-auto|pdf417|PDF417 from libbarcode_orv: text, 0123456789012345 digits and more text.|--width 440 --height 180"
  "Two-dimensional|pdf417-columns|pdf417|Fixed four columns at error level 5|--width 320 --height 320 --columns 4 --error-level 5"
  "Two-dimensional|pdf417-shift-jis|pdf417|二次元コード PDF417 の見本|--width 440 --height 180 --string-encoding shift-jis --fg 120,20,40"
  "Print size and orientation|jan13-0.33mm-300dpi|jan13|490123456789|--xdim 0.33 --dpi 300|modules of 4 px, 113 modules wide with the quiet zones: 452 px, 38.27 mm; the PNG carries 300 dpi"
  "Print size and orientation|qr-0.5mm-seamless|qr|https://example.com/print|--xdim 0.5 --dpi 300|its SVG: one path a colour on whole pixels, 14.7 mm wide, no seams between modules"
  "Print size and orientation|itf14-bearer-bars|itf|15400141288763|--bearer --width 520 --height 140|the ITF-14 frame: bearer bars 5 modules thick around bars and quiet zones"
  "Print size and orientation|code128-turned-90|code128|Turned a quarter|--rotate 90 --width 340 --height 110|a 340 x 110 draw, turned: a 110 x 340 picture"
  "Print size and orientation|datamatrix-turned-270|datamatrix|TURNED 270|--xdim 0.4 --dpi 300 --rotate 270|"
  "Compatibility forms|code128-set-a-compat|code128|ABC123|--width 300 --height 100 --compat|compat"
  "Compatibility forms|code128-odd-digits-compat|code128|12345|--width 300 --height 100 --compat|compat"
  "Compatibility forms|code93-shift-stand-ins-compat|code93|A<B|--width 300 --height 100 --compat|compat"
  "Compatibility forms|matrix2of5-compat|matrix2of5|1234567890|--width 400 --height 100 --compat|compat"
  "Compatibility forms|nec2of5-compat|nec2of5|1234567890|--width 400 --height 100 --compat|compat"
  "Compatibility forms|jan13-no-quiet-zone-compat|jan13|4901234567894|--width 300 --height 120 --compat|compat"
  "Compatibility forms|qr-no-quiet-zone-compat|qr|no quiet zone|--width 200 --height 200 --compat|compat"
)

html="$out/index.html"
{
  echo '<!DOCTYPE html>'
  echo '<html lang="en"><head><meta charset="utf-8"><title>libbarcode_orv gallery</title>'
  echo '<style>body{font-family:sans-serif;margin:2em;background:#eceff1}'
  echo '.grid{display:grid;grid-template-columns:repeat(auto-fill,minmax(420px,1fr));gap:1em}'
  echo '.card{background:#fff;padding:1em;border-radius:6px;box-shadow:0 1px 3px #0003}'
  echo '.picture{background:#fff;padding:24px;text-align:center}img{max-width:100%}'
  echo 'code{display:block;white-space:pre-wrap;word-break:break-all;background:#f6f8fa;padding:.4em;font-size:85%}'
  echo '.note{color:#444;font-size:90%}.compat{color:#a0460a;font-weight:bold}.read{font-size:90%}'
  echo '.read b{color:#1b5e20}.read i{color:#b71c1c}</style>'
  echo '</head><body><h1>libbarcode_orv gallery</h1>'
  echo '<p>Every picture was made by the command under it, run from the repository after <code>make demo</code>;'
  echo 'paste it to get the same file. Under each card: what ZXing-cpp read from that very PNG file when the'
  echo 'gallery was built (no quiet zone added), or how the symbol is checked where no reader here handles it.</p>'
} > "$html"

escape() { sed -e 's/&/\&amp;/g' -e 's/</\&lt;/g' -e 's/>/\&gt;/g' -e 's/"/\&quot;/g'; }

# How a symbology without a ZXing-cpp reader is checked instead.
unread_note() {
  case "$1" in
    matrix2of5) echo "No reader here handles Matrix 2 of 5: its modules are compared with Zint's in the test suite." ;;
    nec2of5) echo "No reader here handles NEC 2 of 5, and its patterns are the library's own: compatibility only." ;;
    databar-limited) echo "No reader here handles GS1 DataBar Limited: its modules are compared with Zint's in the test suite." ;;
    yubin) echo "No reader here handles the Japan Post customer barcode: its bars are checked against sequences worked out by hand." ;;
    *) echo "" ;;
  esac
}

# The card's line about what the reader found in the PNG. A standard card that does not
# read is a fault of the gallery, and stops it.
read_line() {
  local symbology=$1 png=$2 note=$3 unread found
  unread=$(unread_note "$symbology")
  if [ -n "$unread" ]; then
    printf '<p class="read">%s</p>' "$(printf '%s' "$unread" | escape)"
    return
  fi
  if [ ! -x "$reader" ]; then
    printf '<p class="read">Not read: this build has no ZXing-cpp reader.</p>'
    return
  fi
  if found=$("$reader" "$png"); then
    printf '<p class="read">ZXing-cpp reads <b>%s</b></p>' "$(printf '%s' "$found" | escape | sed 's/\t/: /')"
  else
    [ "$note" = compat ] || { echo "make-gallery: $png does not read back" >&2; exit 1; }
    printf '<p class="read">ZXing-cpp reads <i>nothing</i></p>'
  fi
}

rendered=0
skipped=()
carded=()
section=""
for sample in "${samples[@]}"; do
  IFS='|' read -r group name symbology text options note <<< "$sample"
  # shellcheck disable=SC2206
  extra=($options)
  png_cmd=("$cli" "${extra[@]}" --output "$out/$name.png" "$symbology" "$text")
  svg_cmd=("$cli" "${extra[@]}" --output "$out/$name.svg" "$symbology" "$text")
  svg_ok=1
  case "$note" in "png only"*) svg_cmd=(true); svg_ok=0 ;; esac
  case ${provided[$symbology]:-} in
    yes) ;;
    no) skipped+=("$name"); continue ;;
    *) echo "make-gallery: $name: the tool lists no symbology $symbology" >&2; exit 1 ;;
  esac
  carded+=("$symbology")
  if ! "${png_cmd[@]}" 2> "$out/$name.log" || ! "${svg_cmd[@]}" 2>> "$out/$name.log"; then
    cat "$out/$name.log" >&2
    echo "make-gallery: $name failed" >&2
    exit 1
  fi
  rm -f "$out/$name.log"
  if [ "$group" != "$section" ]; then
    [ -n "$section" ] && echo '</div>' >> "$html"
    echo "<h2>$group</h2><div class=\"grid\">" >> "$html"
    section=$group
  fi
  shown="build/barcode-orv ${options} -o $name.png $symbology $(printf '%q' "$text")"
  read_back=$(read_line "$symbology" "$out/$name.png" "$note")
  case "$note" in
    compat) label='<p class="compat">Compatibility form (--compat): the library&apos;s default bytes, kept for hosts that print them; the tool&apos;s default refuses or corrects it.</p>' ;;
    "") label="" ;;
    *) label="<p class=\"note\">$(printf '%s' "$note" | escape)</p>" ;;
  esac
  {
    echo "<div class=\"card\"><div class=\"picture\"><img src=\"$name.png\" alt=\"$name\"></div>"
    if [ "$svg_ok" = 1 ]; then
      echo "<strong>$name</strong> (<a href=\"$name.svg\">SVG</a>)$label"
    else
      echo "<strong>$name</strong>$label"
    fi
    echo "<code>$(printf '%s' "$shown" | escape)</code>$read_back</div>"
  } >> "$html"
  rendered=$((rendered + 1))
done

[ -n "$section" ] && echo '</div>' >> "$html"
echo '</body></html>' >> "$html"
echo "gallery: $rendered symbols in $out/index.html"
if [ ${#skipped[@]} -gt 0 ]; then
  echo "gallery: not provided by this build: ${skipped[*]}"
fi
uncarded=()
for symbology in $(printf '%s\n' "${!provided[@]}" | sort); do
  if [ "${provided[$symbology]}" = yes ] && [[ " ${carded[*]} " != *" $symbology "* ]]; then
    uncarded+=("$symbology")
  fi
done
if [ ${#uncarded[@]} -gt 0 ]; then
  echo "gallery: no card yet for: ${uncarded[*]}"
fi
