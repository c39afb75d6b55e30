#!/usr/bin/env bash
# Makes a page of pictures of one volume, each with the command that made it.
#   usage: scripts/gallery.sh PROGRAM INPUT OUTDIR
#   PROGRAM  the corvane program
#   INPUT    what corvane reads: a DICOM folder, .nii.gz, .nrrd, .mha, phantom:
#   OUTDIR   receives index.html and the pictures; both are replaced when they stand there already
set -euo pipefail

fail()
{
    echo "gallery.sh: $1" >&2
    exit 1
}

[ $# -eq 3 ] || fail "usage: gallery.sh PROGRAM INPUT OUTDIR"
program=$1 input=$2 outDir=$3
command -v "$program" >/dev/null || fail "$program: no such program"
info=$("$program" info "$input")
case $info in *"choose one with --series"*) fail "$input holds several series; copy one into a folder of its own" ;; esac
mkdir -p "$outDir"
page=$outDir/index.html.part
trap 'rm -f "$page"' EXIT

escaped()
{
    sed -e 's/&/\&amp;/g' -e 's/</\&lt;/g' -e 's/>/\&gt;/g' -e 's/"/\&quot;/g'
}

# The command as one would type it.
typed()
{
    local word text=corvane
    for word in "${@#"$outDir/"}"; do
        case $word in
        *[!A-Za-z0-9_./:,=+-]* | '') text+=" '$word'" ;;
        *) text+=" $word" ;;
        esac
    done
    escaped <<<"$text"
}

# A heading for the pictures that follow:  section TITLE TEXT
section()
{
    [ -z "${open:-}" ] || echo '</div>' >>"$page"
    open=yes
    printf '<h2>%s</h2>\n<p class="text">%s</p>\n<div class="grid">\n' "$1" "$2" >>"$page"
}

# One picture:  picture NAME CAPTION COMMAND INPUT ARGUMENT...   runs `corvane COMMAND INPUT ARGUMENT... -o NAME.png`.
picture()
{
    local name=$1 caption=$2
    shift 2
    "$program" "$@" -o "$outDir/$name.png" --force >/dev/null
    printf '<figure><a href="%s"><img src="%s" alt="%s"></a><figcaption>%s<code>%s</code></figcaption></figure>\n' \
        "$name.png" "$name.png" "$caption" "$caption" "$(typed "$@" -o "$name.png")" >>"$page"
}

# Several pictures of one command, as a strip:  strip NAME CAPTION COMMAND INPUT ARGUMENT...
strip()
{
    local name=$1 caption=$2 file
    shift 2
    rm -f "$outDir/${name}_"[0-9]*.png
    "$program" "$@" -o "$outDir/${name}_{index}.png" --force >/dev/null
    printf '<figure class="wide"><div class="strip">' >>"$page"
    for file in "$outDir/${name}_"[0-9]*.png; do
        file=${file##*/}
        printf '<a href="%s"><img src="%s" alt="%s"></a>' "$file" "$file" "$caption" >>"$page"
    done
    printf '</div><figcaption>%s<code>%s</code></figcaption></figure>\n' \
        "$caption" "$(typed "$@" -o "${name}_{index}.png")" >>"$page"
}

# A cut, as three pictures: before, the region, after.  cutting NAME CAPTION INPUT ARGUMENT...   leaves NAME.nrrd, too.
cutting()
{
    local name=$1 caption=$2 file
    shift 2
    "$program" cut "$@" -o "$outDir/$name.nrrd" --preview "$outDir/${name}_{picture}.png" --force >/dev/null
    printf '<figure class="wide"><div class="strip">' >>"$page"
    for file in "${name}_before.png" "${name}_region.png" "${name}_after.png"; do
        printf '<a href="%s"><img src="%s" alt="%s"></a>' "$file" "$file" "$caption" >>"$page"
    done
    printf '</div><figcaption>%s<code>%s</code></figcaption></figure>\n' \
        "$caption" "$(typed cut "$@" -o "$name.nrrd" --preview "${name}_{picture}.png")" >>"$page"
}

# A contact sheet of views, three in a row:  sheet NAME CAPTION INPUT ARGUMENT... -- TITLE:OPTIONS...
sheet()
{
    local name=$1 caption=$2 number=0 title file
    local -a common=() options
    shift 2
    while [ "$1" != -- ]; do
        common+=("$1")
        shift
    done
    shift
    printf '<figure class="wide"><div class="sheet">' >>"$page"
    for title in "$@"; do
        number=$((number + 1))
        file=${name}_$number.png
        read -ra options <<<"${title#*:}"
        "$program" vr "${common[@]}" "${options[@]}" --letters -o "$outDir/$file" --force >/dev/null
        printf '<a href="%s"><img src="%s" alt="%s">%s</a>' "$file" "$file" "${title%%:*}" "${title%%:*}" >>"$page"
    done
    printf '</div><figcaption>%s<code>%s</code></figcaption></figure>\n' \
        "$caption" "$(typed vr "${common[@]}" --view left --letters -o "${name}_1.png")" >>"$page"
}

# In mm: pixels such that the longest side of the volume fills about 512 of them, and a seventh of the shortest side.
# The plane to compare windows on: coronal, unless the stack is too short for that.
choices=$(awk '/^size/ { split($0, n, /[^0-9.]+/); x = n[2]; y = n[3]; z = n[4] }
               /^spacing/ { split($0, s, /[^0-9.]+/); x *= s[2]; y *= s[3]; z *= s[4] }
               END { long = x > y ? x : y; long = long > z ? long : z; short = x < y ? x : y; short = short < z ? short : z
                     printf "%.3f %.1f %s", long / 512, short / 7, z < x / 2 ? "axial" : "coronal" }' <<<"$info")
read -r pixel step windowPlane <<<"$choices"

cat >"$page" <<'EOF'
<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>Corvane gallery</title>
<style>
:root { color-scheme: dark; }
body { margin: 0 auto; max-width: 1500px; padding: 2rem clamp(1rem, 4vw, 3rem) 4rem; background: #101318; color: #d7dce4;
       font: 16px/1.55 system-ui, -apple-system, "Segoe UI", sans-serif; }
h1 { margin: 0 0 .2rem; font-size: 2rem; font-weight: 650; letter-spacing: -.02em; color: #fff; }
h2 { margin: 3rem 0 .2rem; font-size: 1.3rem; font-weight: 600; color: #fff; }
.text { margin: 0 0 1.1rem; max-width: 70ch; color: #97a1b0; }
pre, code { font: 13px/1.5 ui-monospace, "Cascadia Code", Menlo, Consolas, monospace; }
pre { margin: 1.2rem 0 0; padding: 1rem 1.2rem; overflow-x: auto; background: #171b22; border: 1px solid #262c36; border-radius: 10px; }
.grid { display: grid; gap: 1.1rem; grid-template-columns: repeat(auto-fill, minmax(min(100%, 340px), 1fr)); }
figure { margin: 0; display: flex; flex-direction: column; min-width: 0; overflow: hidden; background: #171b22;
         border: 1px solid #262c36; border-radius: 10px; }
figure > a { flex: 1; display: flex; background: #000; }
figure img { display: block; width: 100%; object-fit: contain; image-rendering: auto; }
figure > a img { max-height: 460px; }
figcaption { padding: .8rem 1rem .9rem; }
figcaption code { display: block; margin-top: .5rem; color: #7fb4ff; overflow-wrap: anywhere; }
.wide { grid-column: 1 / -1; }
.sheet { display: grid; gap: 2px; grid-template-columns: repeat(3, 1fr); max-width: 900px; background: #000; }
.sheet a { color: #97a1b0; text-align: center; text-decoration: none; }
.strip { display: grid; gap: 2px; grid-template-columns: repeat(auto-fit, minmax(140px, 1fr)); background: #000; }
</style>
</head>
<body>
EOF
printf '<h1>%s</h1>\n<p class="text">Every picture comes from the command below it.</p>\n<pre>%s</pre>\n' \
    "$(escaped <<<"$input")" "$(printf '$ corvane info %s\n%s\n' "$input" "$info" | escaped)" >>"$page"

section "Standard planes" "Through the middle of the volume, in true proportion; the letters are the patient's directions."
for plane in axial sagittal coronal; do
    picture "$plane" "${plane^}" mpr "$input" --plane "$plane" --pixel-size "$pixel"
done

section "Oblique planes" "Two planes turn about the normal of the third; the letters follow."
picture rotated_sagittal "Sagittal, turned by 30 degrees about the axial normal" \
    mpr "$input" --plane sagittal --rotate axial:30 --pixel-size "$pixel"
picture rotated_coronal "Coronal, turned by 30 and 20 degrees" \
    mpr "$input" --plane coronal --rotate axial:30 --rotate sagittal:20 --pixel-size "$pixel"
picture rotated_axial "Axial, turned by 25 degrees about the sagittal normal" \
    mpr "$input" --plane axial --rotate sagittal:25 --pixel-size "$pixel"

if grep -q '^values.* HU$' <<<"$info"; then
    section "Windows" "The same plane, each time another range of Hounsfield units."
    for window in abdomen mediastinum lung bone brain; do
        picture "window_$window" "Window: $window" mpr "$input" --plane "$windowPlane" --window "$window" --pixel-size "$pixel"
    done
fi

section "A stack" "Parallel slices at an even distance."
strip stack "Six axial slices, $step mm apart" \
    mpr "$input" --plane axial --count 6 --step "$step" --pixel-size "$pixel"

case $input in
phantom:*)
    section "Labels" "Labels over the stored values, taken from the nearest voxel and never mixed."
    for plane in axial sagittal coronal; do
        picture "labels_$plane" "${plane^}, with labels" \
            mpr "$input" --plane "$plane" --show-labels --pixel-size "$pixel"
    done
    ;;
esac
if [ "$input" = phantom: ]; then
    tilted=phantom:tilt=20 unequal=phantom:spacing=1.6x2x4,size=192x160x80
    section "The same patient, scanned otherwise" "A tilted gantry and unequal spacings change the voxels, not the patient."
    for plane in axial sagittal coronal; do
        picture "tilted_$plane" "${plane^}, gantry tilted by 20 degrees" mpr "$tilted" --plane "$plane" --pixel-size "$pixel"
    done
    for plane in axial sagittal coronal; do
        picture "unequal_$plane" "${plane^}, voxels of 1.6 x 2 x 4 mm" mpr "$unequal" --plane "$plane" --pixel-size "$pixel"
    done
fi

section "Projections" "The largest, mean or smallest value along each ray, through the whole volume or through a slab 20 mm thick."
picture mip_front "Maximum, from the front" mip "$input"
picture mip_left "Maximum, from the left" mip "$input" --view left
picture aip_front "Mean, from the front" aip "$input"
slab=(--plane "$windowPlane" --thickness 20 --pixel-size "$pixel")
picture slab_mip "Maximum in a slab" mip "$input" "${slab[@]}"
picture slab_aip "Mean in a slab" aip "$input" "${slab[@]}"
picture slab_minip "Minimum in a slab" minip "$input" "${slab[@]}"
strip mip_turn "Maximum, a turn round the patient" mip "$input" --turntable 8 --size 256
case $input in
phantom:*) picture mip_vessels "Maximum, bone left out by its label" mip "$input" --hide-label 2 --hide-label 7 --hide-margin 1 --window 200,600 ;;
esac

section "Volume rendering" "Parallel rays, light from the eye; each picture with another transfer function or from elsewhere."
if grep -q '^values.* HU$' <<<"$info"; then
    for preset in default bone vessels muscle skin lung; do
        picture "vr_$preset" "Preset: $preset" vr "$input" --preset "$preset"
    done
    structure=bone inner=vessels
else
    picture vr_default "Preset: default, which follows the values of this volume" vr "$input"
    structure=default inner=default
fi
for view in left posterior superior; do
    picture "vr_$view" "Seen from another side: $view" vr "$input" --preset "$structure" --view "$view"
done
picture vr_planes "Three planes in their places" vr "$input" --preset "$structure" --planes --azimuth 35 --elevation 25
strip vr_turn "A turn round the patient" vr "$input" --preset "$structure" --turntable 8 --size 256

section "Standard views" "The three anatomical views, the same from behind, and the views along the patient's axes."
sheet view "From each side of the patient; the letters say which" "$input" --preset "$structure" --size 300 -- \
    "sagittal:--view left" "coronal:--view anterior" "axial:--view inferior" \
    "sagittal, back:--view right" "coronal, back:--view posterior" "axial, back:--view superior" \
    "x:--view left --roll 90" "y:--view anterior" "z:--view inferior"

section "Cutting" "A polygon on a rendering cuts away what it covers. The volume keeps its values; a label file says what is gone, and the other commands take it."
cutting cut_window "The front half behind the polygon is cut away: a window into the body" \
    "$input" --preset "$inner" --polygon 170,70:342,70:380,250:342,380:170,380:132,250 --depth -9999,0
cutting cut_half "One half of the body is cut away" \
    "$input" --preset "$structure" --polygon 256,0:511,0:511,511:256,511
picture cut_half_left "The other half, with the cut of the last picture, seen from the left" \
    vr "$input" --labels "$outDir/cut_half.nrrd" --preset "$structure" --view left --azimuth -30

case $input in
phantom:*)
    cutting cut_label "Only bone is cut: the front of the ribs goes, everything behind stays" \
        "$input" --show-labels --label-palette 0:hide --label-palette 1:hide --only-label 2 \
        --polygon 0,0:511,0:511,511:0,511 --depth -9999,0
    section "Labels in three dimensions" "A transfer function for each label."
    picture vr_labels "Labels solid, without the body and the rest" \
        vr "$input" --show-labels --label-palette 0:hide --label-palette 1:hide
    picture vr_palettes "Bone, vessels and liver by their values, the bowel solid" \
        vr "$input" --show-labels --label-palette 0:hide --label-palette 1:hide --label-palette 6:hide \
        --label-palette 2:bone --label-palette 3:vessels --label-palette 5:muscle
    section "Virtual endoscopy" "A look from inside the body."
    picture ve_bowel "A polyp in the bowel, between two folds" ve "$input"
    picture ve_airway "The airway, down to where it divides" \
        ve "$input" --eye 1.5,7,120 --direction 0,0,-1 --up 0,-1,0
    strip ve_flight "A flight through the bowel" \
        ve "$input" --point 60,-36,-51 --point 40,-46,-62 --point 10,-52,-78 --point -30,-46,-83 --frames 8 --size 256
    ;;
*)
    section "Virtual endoscopy" "A look from inside a cavity of the body or, where there is none, from close by."
    picture ve_inside "The eye finds its place by itself" ve "$input"
    ;;
esac

printf '</div>\n</body>\n</html>\n' >>"$page"
mv "$page" "$outDir/index.html"
