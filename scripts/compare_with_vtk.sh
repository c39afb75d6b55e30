#!/usr/bin/env bash
# Runs corvane_bench and a benchmark of VTK in turn on one volume and prints what either takes for the same picture, as a
# Markdown table: CPU milliseconds per frame on one thread, the median of the rounds, and the ratio. These are VTK's CPU
# classes but for averages (gpu_aip), which it has for GPUs only, here on software OpenGL; only of its first frame the
# wall time is known.
#   usage: scripts/compare_with_vtk.sh BENCH VTK_BENCH INPUT EYE [ROUNDS]
#   BENCH      the corvane_bench program
#   VTK_BENCH  a Python program: VTK_BENCH INPUT --ops A,B --sizes 512,1024 --threads 1 --endo-voxel EYE
#              --endo-dir X,Y,Z --json FILE writes
#              {"results": [{"op", "size", "cpu_ms", "first_ms"}, ...]}
#   INPUT      a .nii.gz that both read
#   EYE        the voxel I,J,K in air from which the endoscopies look
#   ROUNDS     how often either runs, 3 when left out
# PYTHON names the interpreter that has VTK, python3 when not set. Without a DISPLAY, xvfb-run lends one.
set -euo pipefail

fail()
{
    echo "compare_with_vtk.sh: $1" >&2
    exit 1
}

[ $# -eq 4 ] || [ $# -eq 5 ] || fail "usage: compare_with_vtk.sh BENCH VTK_BENCH INPUT EYE [ROUNDS]"
bench=$1 vtkBench=$2 input=$3 eye=$4 rounds=${5:-3} python=${PYTHON:-python3}
[ -x "$bench" ] || fail "$bench: no such program; configure with -DCORVANE_BUILD_BENCH=ON"
[ -r "$vtkBench" ] || fail "$vtkBench: no such file"
[ -r "$input" ] || fail "$input: no such file"
[[ $rounds =~ ^[1-9][0-9]*$ ]] || fail "ROUNDS is a number from 1 up, not '$rounds'"
"$python" -c 'import vtk' 2>/dev/null || fail "$python has no VTK; set PYTHON to one that has"
display=()
if [ -z "${DISPLAY:-}" ]; then
    command -v xvfb-run >/dev/null || fail "there is no DISPLAY and no xvfb-run"
    display=(xvfb-run -a -s '-screen 0 1280x1100x24 -noreset')
fi

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
rows='^(volume_rendering|endoscopy|endoscopy_air|projection|slab_20mm|plane|first_frame)/.*(512|1024)|^first_frame/'
ops=dvr_front,dvr_oblique,dvr_zoom,endo,endo_air,mip,minip,gpu_aip,reslice,slab_max,slab_mean
for ((round = 1; round <= rounds; ++round)); do
    echo "round $round of $rounds" >&2
    "$bench" --benchmark_filter="$rows" --benchmark_min_time=0.3 --benchmark_out_format=json \
        --benchmark_out="$folder/ours_$round.json" "$input" "$eye" >/dev/null
    LIBGL_ALWAYS_SOFTWARE=1 LP_NUM_THREADS=1 "${display[@]}" "$python" "$vtkBench" "$input" --ops "$ops" --sizes 512,1024 --threads 1 \
        --reps 3 --max-seconds 20 --endo-voxel "$eye" --endo-dir 0,1,-0.3 --json "$folder/vtk_$round.json" >/dev/null
done

"$python" - "$folder" <<'PYTHON'
import glob, json, re, statistics, sys

# A row of VTK's program and the one of ours that draws the same.
PAIRS = [("dvr_front", "volume_rendering/front"), ("dvr_oblique", "volume_rendering/oblique"),
         ("dvr_zoom", "volume_rendering/zoom"), ("endo", "endoscopy"),
         ("endo_air", "endoscopy_air"), ("mip", "projection/maximum"),
         ("minip", "projection/minimum"), ("gpu_aip", "projection/average"), ("reslice", "plane/trilinear"), ("slab_max", "slab_20mm/maximum"),
         ("slab_mean", "slab_20mm/average"), ("first frame", "first_frame")]
folder = sys.argv[1]
ours, theirs = {}, {}
for file in glob.glob(folder + "/ours_*.json"):
    fastest = {}  # of the instruction sets, which stand slowest first
    for row in json.load(open(file))["benchmarks"]:
        match = re.match(r"(.+?)(?:/(?:base|avx2))?/(\d+)(?:/process_time)?(?:/real_time)?$", row["name"])
        if match:
            fastest[match[1], int(match[2])] = row["cpu_time"]
    for key, value in fastest.items():
        ours.setdefault(key, []).append(value)
for file in glob.glob(folder + "/vtk_*.json"):
    for row in json.load(open(file))["results"]:
        theirs.setdefault((row["op"], row["size"]), []).append(row["cpu_ms"])
        if row["op"] == "dvr_front" and row["size"] == 512 and "first_ms" in row:
            theirs.setdefault(("first frame", 512), []).append(row["first_ms"])

print("| picture | side | VTK, ms | Corvane, ms | VTK / Corvane |\n|---|---|---|---|---|")
for op, name in PAIRS:
    for side in (512, 1024):
        if (op, side) in theirs and (name, side) in ours:
            a, b = statistics.median(theirs[op, side]), statistics.median(ours[name, side])
            print(f"| {op} | {side} | {a:.1f} | {b:.1f} | {a / b:.1f} |")
PYTHON
