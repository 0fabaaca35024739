#!/usr/bin/env bash
# The orucv program as a user runs it: cli_test.sh CASE, with ORUCV (the
# program), CLI_PROBE (tests/cli/cli_probe), CLI_WORK (a scratch directory)
# and CLI_BUILD (the build directory) set by CTest.
set -u
case_name=$1
work=${CLI_WORK:?}
rm -rf "$work" && mkdir -p "$work" && cd "$work" || exit 1
failures=0

fail() { echo "FAIL: $*"; failures=$((failures + 1)); }

# expect STATUS TEXT -- COMMAND...: the command exits with STATUS and its
# stderr (or stdout when TEXT starts with "out:") contains TEXT.
expect() {
    local status=$1 text=$2
    shift 3
    "$@" >out.txt 2>err.txt
    local got=$?
    local where=err.txt
    if [ "${text#out:}" != "$text" ]; then text=${text#out:}; where=out.txt; fi
    if [ "$got" != "$status" ]; then
        fail "'$*' exited $got, expected $status"; cat err.txt
    elif ! grep -qF -- "$text" "$where"; then
        fail "'$*' did not print: $text"; cat out.txt err.txt
    fi
}

# A 16-bit PGM of 4x2 samples (big-endian): 0 1 256 65535 / 4660 43981 32768 7.
printf 'P5\n4 2\n65535\n\x00\x00\x00\x01\x01\x00\xff\xff\x12\x34\xab\xcd\x80\x00\x00\x07' >wide.pgm
printf 'P5\n4 2\n65535\n' >zero.pgm && head -c 16 /dev/zero >>zero.pgm
"$CLI_PROBE" gray 64 48 gray.pgm || exit 1
# Builds without libpng refuse PNG files by name and by content.
has_png=no
"$ORUCV" help | grep -qF 'PNG (8 and 16 bit)' && has_png=yes

case $case_name in
options)
    # Unknown options, stray arguments and missing values, with the usage line.
    expect 2 "unknown option --bogus" -- "$ORUCV" canny gray.pgm e.pgm --bogus 3
    expect 2 "usage: orucv canny IN OUT" -- "$ORUCV" canny gray.pgm e.pgm --bogus 3
    expect 2 "unknown option --levels" -- "$ORUCV" pyrup gray.pgm u.pgm --levels 2
    expect 2 "unknown option --dz" -- "$ORUCV" sobel gray.pgm s.pgm --dz
    expect 2 "unexpected argument 'extra'" -- "$ORUCV" canny gray.pgm e.pgm extra
    expect 2 "missing OUT" -- "$ORUCV" canny gray.pgm
    expect 2 "option --low needs a value (L)" -- "$ORUCV" canny gray.pgm e.pgm --low
    expect 2 "option --seed is required" -- "$ORUCV" fill gray.pgm f.pgm --value 3
    expect 2 "option --metric takes c, l1 or l2, not 'l3'" -- "$ORUCV" distance gray.pgm d.pgm --metric l3
    expect 2 "--low needs a number" -- "$ORUCV" canny gray.pgm e.pgm --low x
    expect 2 "unknown option -h2" -- "$ORUCV" demo -h2
    expect 2 "unknown command 'frobnicate'" -- "$ORUCV" frobnicate
    expect 0 "out:e.pgm: 64x48" -- "$ORUCV" canny gray.pgm e.pgm --low=10 --high 50
    # Smoothing first: noise gives far fewer edges, the step between the
    # halves still gives its line.
    { printf 'P5 64 64 255\n'; LC_ALL=C awk 'BEGIN { s = 1; for (i = 0; i < 4096; i++) {
        s = (s * 1103515245 + 12345) % 2147483648; printf "%c", (i % 64 < 32 ? 60 : 160) + int(s / 2147483648 * 40) } }'; } >noise.pgm
    edges() { sed -n 's/.*, \([0-9]*\) edge pixels.*/\1/p' "$1"; }
    expect 0 "out:smoothed with sigma 1.41" -- "$ORUCV" canny noise.pgm smooth.pgm --sigma 1.4 --low 20 --high 60
    "$ORUCV" canny noise.pgm e.pgm --low 20 --high 60 >sharp.txt && cp out.txt smooth.txt
    n=$(edges smooth.txt)
    [ "$n" -lt "$(($(edges sharp.txt) / 4))" ] && [ "$n" -ge 50 ] && [ "$n" -le 140 ] ||
        fail "--sigma: $(cat smooth.txt) vs $(cat sharp.txt)"
    expect 2 "choose one derivative, not both --dx and --dy" -- "$ORUCV" sobel gray.pgm s.pgm --dx --dy
    ;;
help)
    expect 0 "out:usage: orucv COMMAND" -- "$ORUCV" help
    expect 0 "out:usage: orucv canny IN OUT" -- "$ORUCV" help canny
    expect 0 "out:--sigma S" -- "$ORUCV" canny --help
    expect 0 "out:usage: orucv demo [DIR]" -- "$ORUCV" demo -h
    [ -e ./-h ] && fail "demo -h created a directory"
    expect 2 "unknown command 'nope'" -- "$ORUCV" help nope
    expect 0 "out:orucv 2." -- "$ORUCV" --version
    expect 0 "out:library orucva6 v2.0 gold SP1 (version record 2.0.1.24, target a6" -- "$ORUCV" --version
    expect 2 "takes no arguments" -- "$ORUCV" --version x
    # Every command has a help page that names every option of its usage.
    for c in $("$ORUCV" help | awk '/^commands:/ {on = 1; next} on && NF == 0 {on = 0} on {print $1}'); do
        "$ORUCV" "$c" --help >page.txt 2>&1 || fail "$c --help exited $?"
        grep -q "^usage: orucv $c" page.txt || fail "$c --help has no usage line"
        for o in $(grep -o -- '\[--[a-z0-9-]*' page.txt | tr -d '['); do
            grep -q "^  $o" page.txt || fail "$c --help does not explain $o"
        done
    done
    ;;
outputs)
    # Names the program cannot write are refused before any work.
    expect 2 "cannot write 'e.jpg'" -- "$ORUCV" canny gray.pgm e.jpg
    expect 2 "the name has no extension" -- "$ORUCV" canny gray.pgm e
    expect 2 "cannot write 'o.tif'" -- "$ORUCV" match gray.pgm gray.pgm m.pfm --outline o.tif
    [ -e m.pfm ] && fail "match wrote its score map before refusing the outline name"
    printf 'P6 1 1 255\n\x01\x02\x03' >rgb.ppm
    expect 2 "a PGM holds one channel" -- "$ORUCV" pyrup rgb.ppm u.pgm
    expect 0 "out:u.PPM" -- "$ORUCV" pyrup rgb.ppm u.PPM
    [ "$(head -c 2 u.PPM)" = P6 ] || fail "u.PPM is not a PPM"
    ;;
raw)
    # 16-bit samples survive a float path: |a - 0| = a, to PGM and back, and
    # through PNG when the build has it.
    expect 0 "out:float difference of 16-bit and 16-bit input" -- "$ORUCV" absdiff wide.pgm zero.pgm same.pgm
    cmp -s same.pgm wide.pgm || fail "16-bit values changed on the way through absdiff"
    if [ $has_png = yes ]; then
        "$ORUCV" absdiff wide.pgm zero.pgm same.png >/dev/null || fail "absdiff to PNG"
        [ "$(od -An -tu1 -j24 -N1 same.png | tr -d ' ')" = 16 ] || fail "same.png is not 16-bit"
        "$ORUCV" absdiff same.png zero.pgm back.pgm >/dev/null && cmp -s back.pgm wide.pgm ||
            fail "16-bit PNG round trip changed values"
    else
        expect 2 "cannot write 'same.png': this build has no PNG support" -- "$ORUCV" absdiff wide.pgm zero.pgm same.png
        [ -e same.png ] && fail "a build without PNG support wrote same.png"
        printf '\x89PNG\r\n\x1a\n\0\0\0\rIHDR' >some.png
        expect 2 "'some.png': this build has no PNG support" -- "$ORUCV" absdiff some.png zero.pgm d.pgm
    fi
    # Signed derivatives: int16 in .npy, value + 32768 with --raw offset,
    # |value| with --raw abs, float in .pfm: the same numbers four ways.
    "$ORUCV" sobel gray.pgm dx.npy >/dev/null && "$ORUCV" sobel gray.pgm off.pgm --raw offset >/dev/null &&
        "$ORUCV" sobel gray.pgm abs.pgm --raw abs >/dev/null && "$ORUCV" sobel gray.pgm dx.pfm >/dev/null ||
        fail "sobel outputs"
    values() { od -An -v "$@" | tr -s ' ' '\n' | sed '/^$/d'; }
    values -td2 -j128 dx.npy >npy.txt
    values -tu2 --endian=big -j"$(($(wc -c <off.pgm) - 6144))" off.pgm | awk '{print $1 - 32768}' >off.txt
    values -tu2 --endian=big -j"$(($(wc -c <abs.pgm) - 6144))" abs.pgm >abs.txt
    awk '{print $1 < 0 ? -$1 : $1}' npy.txt >npy_abs.txt
    [ "$(wc -l <npy.txt)" = 3072 ] || fail "dx.npy holds $(wc -l <npy.txt) values"
    cmp -s npy.txt off.txt || fail "--raw offset differs from the .npy values"
    cmp -s npy_abs.txt abs.txt || fail "--raw abs differs from the .npy magnitudes"
    grep -qv '^0$' npy.txt || fail "the derivative is all zero"
    # PFM rows run bottom to top: its last row is the image's first.
    values -tf4 -j"$(($(wc -c <dx.pfm) - 256))" dx.pfm | awk '{printf "%d\n", $1}' >pfm_top.txt
    head -64 npy.txt | cmp -s - pfm_top.txt || fail "dx.pfm does not hold the first row last"
    # 16-bit images keep their depth through the float pyramids and fills.
    expect 0 "out:4x2 -> 2x1" -- "$ORUCV" pyrdown wide.pgm half.pgm
    [ "$(head -c 13 half.pgm | tail -c 6)" = 65535 ] || fail "half.pgm is not 16-bit: $(head -c 13 half.pgm)"
    expect 0 "out:4-connected fixed-range fill from (0,0): area 1" -- "$ORUCV" fill wide.pgm filled.pgm --seed 0,0 --value 60000
    [ "$(od -An -tu2 --endian=big -j13 -N2 filled.pgm | tr -d ' ')" = 60000 ] || fail "fill value"
    expect 0 "out:best match at (0, 0), 4x2, score 1" -- "$ORUCV" match wide.pgm wide.pgm m.npy
    # Float measures: distances kept whole.
    printf 'P5 5 1 255\n\x00\x09\x09\x09\x09' >line.pgm
    expect 0 "out:largest distance 4" -- "$ORUCV" distance line.pgm dist.npy --metric l1
    [ "$(values -tf4 -j128 dist.npy | tr '\n' ' ')" = "0 1 2 3 4 " ] || fail "distances $(values -tf4 -j128 dist.npy)"
    ;;
to8)
    # 16-bit input to an 8-bit command: refused, naming depth and option.
    expect 2 "is a 16-bit image; this command works on 8-bit pixels: --to8 shift" -- "$ORUCV" canny wide.pgm e.pgm
    [ -e e.pgm ] && fail "canny wrote output for a refused input"
    expect 0 "out:e.pgm" -- "$ORUCV" canny wide.pgm e.pgm --to8 scale
    expect 0 "out:s.pgm" -- "$ORUCV" distance wide.pgm s.pgm --to8 shift
    printf 'Pf 1 1 -1.0\n\x00\x00\x80\x3f' >one.pfm
    expect 2 "holds float values" -- "$ORUCV" canny one.pfm e.pgm
    ;;
hostile)
    # Headers claiming gigabytes over a few bytes: a quick, clear refusal.
    "$CLI_PROBE" pnm P5 65535 65535 255 big.pgm && "$CLI_PROBE" pnm P6 46340 46340 255 big.ppm || exit 1
    "$CLI_PROBE" pnm P5 16000 16000 255 truncated.pgm || exit 1
    files="big.pgm big.ppm truncated.pgm"
    if [ $has_png = yes ] && "$CLI_PROBE" png 65535 65535 8 0 big.png; then
        "$CLI_PROBE" png 46340 46340 8 2 bigrgb.png && "$CLI_PROBE" png 16000 16000 8 0 truncated.png
        files="$files big.png bigrgb.png truncated.png"
    fi
    limit_mib=64
    [ "${CLI_SANITIZED:-OFF}" = ON ] && limit_mib=0  # the sanitizers' own memory
    for f in $files; do
        "$CLI_PROBE" run $limit_mib 2 2 -- "$ORUCV" pyrdown "$f" out.pgm >probe.txt 2>err.txt ||
            { fail "$f: $(cat probe.txt err.txt)"; continue; }
        grep -qE "more than the limit|truncated|bad PNG data" err.txt || fail "$f: $(cat err.txt)"
        grep -qF "'$f'" err.txt || fail "$f: the message does not name the file: $(cat err.txt)"
        [ -e out.pgm ] && fail "$f: output written"
    done
    expect 2 "--max-pixels raises it" -- "$ORUCV" pyrdown big.pgm out.pgm
    expect 2 "more than the limit of 100 pixels" -- "$ORUCV" pyrdown gray.pgm out.pgm --max-pixels 100
    ;;
nothing_on_failure)
    expect 2 "seed 70,3 lies outside the 64x48 image" -- "$ORUCV" fill gray.pgm f.pgm --seed 70,3 --value 1
    expect 2 "the images differ in size" -- "$ORUCV" absdiff gray.pgm wide.pgm a.pgm
    expect 2 "template (64x48) is larger than the image (4x2)" -- "$ORUCV" match wide.pgm gray.pgm m.npy
    ls ./*.npy f.pgm a.pgm 2>/dev/null && fail "a failed command left a file"
    # Success prints nothing on stderr (no progress without a terminal).
    "$ORUCV" match gray.pgm gray.pgm m.npy --repeat 3 >out.txt 2>err.txt || fail "match"
    [ -s err.txt ] && fail "stderr without a terminal: $(cat err.txt)"
    grep -q "min .* ms, median .* ms of 3 runs" out.txt || fail "--repeat 3: $(cat out.txt)"
    grep -q "best match at (0, 0), 64x48, score 1" out.txt || fail "best match: $(cat out.txt)"
    ;;
stats)
    # Statistics of a 4x1 image: 0 255 10 20; a mask selecting 255 and 20.
    printf 'P5 4 1 255\n\x00\xff\x0a\x14' >four.pgm
    printf 'P5 4 1 255\n\x00\x07\x00\x01' >half.pgm
    printf 'P5 4 1 255\n\x00\x00\x00\x00' >none.pgm
    expect 0 "out:mean 71.25, standard deviation 106.323504" -- "$ORUCV" stats four.pgm
    expect 0 "out:minimum 0 at (0, 0), maximum 255 at (1, 0)" -- "$ORUCV" stats four.pgm
    expect 0 "out:norms: Inf 255, L1 285, L2 255.9785147" -- "$ORUCV" stats four.pgm
    expect 0 "out:the mask selects 2 of 4 pixels" -- "$ORUCV" stats four.pgm --mask half.pgm
    expect 0 "out:mean 137.5, standard deviation 117.5" -- "$ORUCV" stats four.pgm --mask half.pgm
    expect 0 "out:no pixel selected" -- "$ORUCV" stats four.pgm --mask none.pgm
    # Channel 2 of two colour pixels: 2 and 5.
    printf 'P6 2 1 255\n\x01\x02\x03\x04\x05\x06' >two.ppm
    expect 0 "out:mean 3.5, standard deviation 1.5" -- "$ORUCV" stats two.ppm --coi 2
    expect 0 "out:minimum 2 at (0, 0), maximum 5 at (1, 0)" -- "$ORUCV" stats two.ppm --coi 2
    expect 0 "out: channel 3" -- "$ORUCV" stats two.ppm
    expect 2 "this one is gray" -- "$ORUCV" stats four.pgm --coi 2
    expect 2 "--coi needs a whole number from 1 to 3" -- "$ORUCV" stats two.ppm --coi 4
    expect 2 "the mask is 4x1, the image 4x2" -- "$ORUCV" stats wide.pgm --mask four.pgm
    # 16-bit samples are measured exactly, as floats.
    expect 0 "out:norms: Inf 65535, L1 147208" -- "$ORUCV" stats wide.pgm
    # Sums of more bytes than a 32-bit sum holds: 8601600 pixels of 255.
    { printf 'P5 4096 2100 255\n'; head -c 8601600 /dev/zero | tr '\0' '\377'; } >white.pgm
    # Sums of more bytes than a 32-bit sum holds, measured in bands: 8601600
    # pixels of 255, then the same with 0 in the first row's first pixel and
    # 1 in the last row's.
    expect 0 "out:in bands of 2056 rows" -- "$ORUCV" stats white.pgm
    expect 0 "out:mean 255, standard deviation 0" -- "$ORUCV" stats white.pgm
    expect 0 "out:norms: Inf 255, L1 2193408000, L2 747876.3534" -- "$ORUCV" stats white.pgm
    { printf 'P5 4096 2100 255\n\x00'; head -c 8597503 /dev/zero | tr '\0' '\377'; printf '\x01'; \
      head -c 4095 /dev/zero | tr '\0' '\377'; } >dots.pgm
    expect 0 "out:minimum 0 at (0, 0), maximum 255 at (1, 0)" -- "$ORUCV" stats dots.pgm
    expect 0 "out:mean 254.9999408, standard deviation 0.1227196056" -- "$ORUCV" stats dots.pgm
    expect 1 "out:difference norms: Inf 255, L1 509, L2 359.9180462" -- "$ORUCV" compare white.pgm dots.pgm
    rm -f white.pgm dots.pgm
    # compare: 0 for equal images, 1 for different ones, 2 for errors.
    expect 0 "out:the images are equal" -- "$ORUCV" compare four.pgm four.pgm
    expect 1 "out:difference norms: Inf 255, L1 285" -- "$ORUCV" compare four.pgm none.pgm
    expect 1 "out:relative to the second: Inf 1.148417905e+18" -- "$ORUCV" compare four.pgm none.pgm
    expect 1 "out:PSNR 5.99 dB (peak 255): the images differ" -- "$ORUCV" compare four.pgm none.pgm
    expect 0 "out:no pixel selected" -- "$ORUCV" compare four.pgm none.pgm --mask none.pgm
    expect 1 "out:difference norms: Inf 255, L1 275" -- "$ORUCV" compare four.pgm none.pgm --mask half.pgm
    expect 0 "out:PSNR infinite (peak 65535)" -- "$ORUCV" compare wide.pgm wide.pgm
    expect 2 "the images differ in size or channels" -- "$ORUCV" compare four.pgm wide.pgm
    expect 2 "missing B" -- "$ORUCV" compare four.pgm
    ;;
streaming)
    # convert streams rows: memory stays small whatever the height, and the
    # bytes come out as they went in.
    "$CLI_PROBE" gray 1000 100000 tall.pgm || exit 1
    limit_mib=16
    [ "${CLI_SANITIZED:-OFF}" = ON ] && limit_mib=0
    "$CLI_PROBE" run $limit_mib 20 0 -- "$ORUCV" convert tall.pgm tall.npy --max-pixels 1000 >probe.txt 2>&1 ||
        fail "convert tall.pgm: $(cat probe.txt)"
    cmp -s <(tail -c 100000000 tall.npy) <(tail -c 100000000 tall.pgm) || fail "tall.npy holds other values"
    rm -f tall.npy
    cat probe.txt
    size=$(wc -c <tall.pgm)
    expect 2 "is also the input" -- "$ORUCV" convert tall.pgm tall.pgm
    [ "$(wc -c <tall.pgm)" = "$size" ] || fail "convert truncated its own input"
    rm -f tall.pgm
    expect 0 "out:16-bit from PGM" -- "$ORUCV" convert wide.pgm wide.npy
    expect 0 "out:converted to 8-bit" -- "$ORUCV" convert wide.npy w8.pgm --to8 shift
    [ "$(od -An -tu1 -j11 w8.pgm | tr -s ' ')" = " 0 0 1 255 18 171 128 0" ] || fail "--to8 shift: $(od -An -tu1 -j11 w8.pgm)"
    printf 'Pf 1 1 -1.0\n\x00\x00\x80\x3f' >one.pfm
    expect 2 "write them to a .pfm or .npy file" -- "$ORUCV" convert one.pfm one.pgm
    ;;
filters)
    # The strip filters stream: a 4000 x 100000 image through blur and sobel
    # with peak memory under 64 MiB; the outputs have the input's size. The
    # sanitizers' memory and speed are their own: a shorter image there.
    limit_mib=64 tall=100000
    [ "${CLI_SANITIZED:-OFF}" = ON ] && limit_mib=0 tall=5000
    "$CLI_PROBE" gray 4000 $tall tall.pgm || exit 1
    "$CLI_PROBE" run $limit_mib 60 0 -- "$ORUCV" blur tall.pgm tall-blur.pgm --size 7 >probe.txt 2>&1 ||
        fail "blur tall.pgm: $(cat probe.txt)"
    cat probe.txt
    [ "$(head -c 20 tall-blur.pgm | tr '\n' ' ' | cut -d' ' -f1-3)" = "P5 4000 $tall" ] || fail "blur output header"
    rm -f tall-blur.pgm
    "$CLI_PROBE" run $limit_mib 60 0 -- "$ORUCV" sobel tall.pgm tall-sobel.npy --size 5 --dx 1 --dy 1 >probe.txt 2>&1 ||
        fail "sobel tall.pgm: $(cat probe.txt)"
    cat probe.txt
    [ "$(wc -c <tall-sobel.npy)" -ge $((8000 * tall)) ] || fail "sobel output size $(wc -c <tall-sobel.npy)"
    rm -f tall.pgm tall-sobel.npy
    # The blur's mean of a flat image is the image; Laplace of it is 0.
    printf 'P5\n5 3\n255\n' >flat.pgm && printf '\x2a%.0s' $(seq 15) >>flat.pgm
    expect 0 "out:b.pgm: 5x3, oruiBlur_8u16s_C1R size 5" -- "$ORUCV" blur flat.pgm b.pgm --size 5
    cmp -s flat.pgm b.pgm || fail "blur of a flat image"
    expect 0 "out:(16-bit, absolute values)" -- "$ORUCV" laplace flat.pgm l.pgm --raw abs
    [ "$(tail -c 30 l.pgm | od -An -tu1 | tr -d ' \n')" = "$(printf '0%.0s' $(seq 30))" ] || fail "laplace of a flat image"
    expect 2 "option --size takes 3, 5 or 7, not 4" -- "$ORUCV" blur flat.pgm b.pgm --size 4
    expect 2 "option --dx takes 0..2 for size 3, not 3" -- "$ORUCV" sobel flat.pgm s.pgm --size 3 --dx 3
    expect 2 "not --d2x" -- "$ORUCV" sobel flat.pgm s.pgm --dx 1 --d2x
    expect 0 "out:s.npy: 5x3, oruiSobel_8u16s_C1R size 7" -- "$ORUCV" sobel flat.pgm s.npy --size 7 --dy=6
    expect 0 "out:oruiSobel3x3_Dx_8u16s_C1R" -- "$ORUCV" sobel flat.pgm s3.pgm --dx
    expect 0 "out:c.pgm: 64x48, " -- "$ORUCV" corners gray.pgm c.pgm --count 5
    ;;
morphology)
    # A bright pixel grows into the element turned about its anchor; a
    # one-member mask leaves the image as it is; opening and closing are
    # erosion and dilation chained; float images keep their values.
    { printf 'P5 5 5 255\n'; printf '\0\0\0\0\0\0\0\0\0\0\0\0\200\0\0\0\0\0\0\0\0\0\0\0\0'; } >dot.pgm
    pixels() { tail -c "$2" "$1" | od -An -tu1 | tr -s ' \n' ' '; }
    expect 0 "out:dilation by cross 3x3 anchored at 1,1" -- "$ORUCV" dilate dot.pgm d.pgm --shape cross
    [ "$(pixels d.pgm 25)" = " 0 0 0 0 0 0 0 128 0 0 0 128 128 128 0 0 0 128 0 0 0 0 0 0 0 " ] ||
        fail "dilate by a cross: $(pixels d.pgm 25)"
    expect 0 "out:dilation by rect 2x2 anchored at 0,0" -- "$ORUCV" dilate dot.pgm r.pgm --size 2x2 --anchor 0,0
    [ "$(pixels r.pgm 25)" = " 0 0 0 0 0 0 128 128 0 0 0 128 128 0 0 0 0 0 0 0 0 0 0 0 0 " ] ||
        fail "dilate by a 2x2 rectangle anchored at 0,0: $(pixels r.pgm 25)"
    expect 0 "out:erosion by mask dot.pgm 5x5 anchored at 2,2" -- "$ORUCV" erode dot.pgm m.pgm --shape mask:dot.pgm
    cmp -s <(tail -c 25 m.pgm) <(tail -c 25 dot.pgm) || fail "a one-member mask changed the image"
    "$CLI_PROBE" gray 61 53 g.pgm || exit 1
    for shape in rect cross ellipse; do
        "$ORUCV" erode g.pgm e.pgm --shape $shape --size 5x3 >/dev/null &&
            "$ORUCV" dilate e.pgm ed.pgm --shape $shape --size 5x3 >/dev/null &&
            "$ORUCV" open g.pgm o.pgm --shape $shape --size 5x3 >/dev/null || fail "open by $shape"
        cmp -s ed.pgm o.pgm || fail "opening by $shape is not erosion then dilation"
        "$ORUCV" dilate g.pgm d.pgm --shape $shape --size 3x5 --anchor 0,1 >/dev/null &&
            "$ORUCV" erode d.pgm de.pgm --shape $shape --size 3x5 --anchor 0,1 >/dev/null &&
            "$ORUCV" close g.pgm c.pgm --shape $shape --size 3x5 --anchor 0,1 >/dev/null || fail "close by $shape"
        cmp -s de.pgm c.pgm || fail "closing by $shape is not dilation then erosion"
    done
    "$ORUCV" gradient dot.pgm gr.pgm --size 1x1 >/dev/null || fail "gradient"
    [ "$(pixels gr.pgm 25 | tr -d ' 0')" = "" ] || fail "the gradient by one pixel is not 0: $(pixels gr.pgm 25)"
    # Floats 1, -2, 3 in a row: the 3x3 erosion is -2 everywhere, the dilation 1, 3, 3.
    printf 'Pf\n3 1\n-1.0\n\000\000\200\077\000\000\000\300\000\000\100\100' >f.pfm
    expect 0 "out:(32f), erosion" -- "$ORUCV" erode f.pfm fe.pfm
    [ "$(tail -c 12 fe.pfm | od -An -tf4 | tr -s ' ')" = " -2 -2 -2" ] || fail "float erosion: $(tail -c 12 fe.pfm | od -An -tf4)"
    "$ORUCV" dilate f.pfm fd.npy >/dev/null || fail "float dilation"
    [ "$(tail -c 12 fd.npy | od -An -tf4 | tr -s ' ')" = " 1 3 3" ] || fail "float dilation: $(tail -c 12 fd.npy | od -An -tf4)"
    expect 2 "write them to a .pfm or .npy file" -- "$ORUCV" erode f.pfm fe.pgm
    expect 2 "option --shape takes rect, cross, ellipse or mask:FILE, not 'disc'" -- "$ORUCV" erode g.pgm x.pgm --shape disc
    expect 2 "--anchor 3,0 lies outside the 3x3 element" -- "$ORUCV" erode g.pgm x.pgm --anchor 3,0
    expect 2 "--size 3x3 differs from the mask 'dot.pgm' (5x5)" -- "$ORUCV" erode g.pgm x.pgm --shape mask:dot.pgm --size 3x3
    [ -e x.pgm ] && fail "a failed command left x.pgm"
    # Streaming: an opening (two states chained) of 4000 x 100000 pixels in
    # little memory; its top rows are those of the image's top alone. The
    # sanitizers' memory and speed are their own: a shorter image there.
    limit_mib=64 tall=100000
    [ "${CLI_SANITIZED:-OFF}" = ON ] && limit_mib=0 tall=5000
    "$CLI_PROBE" gray 4000 $tall tall.pgm && "$CLI_PROBE" gray 4000 40 top.pgm || exit 1
    "$CLI_PROBE" run $limit_mib 60 0 -- "$ORUCV" open tall.pgm tall-open.pgm --shape ellipse --size 7x7 \
        --max-pixels 4000 >probe.txt 2>&1 || fail "open tall.pgm: $(cat probe.txt)"
    cat probe.txt
    rm -f tall.pgm
    "$ORUCV" open top.pgm top-open.pgm --shape ellipse --size 7x7 >/dev/null || fail "open top.pgm"
    rows30() { tail -c +$(($(head -3 "$1" | wc -c) + 1)) "$1" | head -c $((4000 * 30)); }
    cmp -s <(rows30 tall-open.pgm) <(rows30 top-open.pgm) || fail "the tall opening's top rows differ"
    rm -f tall-open.pgm
    ;;
progress)
    # Large matches run in bands of result rows: byte scores are exact sums,
    # so the top rows of a banded map equal those of a map of a crop matched
    # in one call.
    "$CLI_PROBE" gray 600 600 full.pgm && "$CLI_PROBE" gray 600 150 crop.pgm || exit 1
    printf 'P5 100 100 255\n' >tpl.pgm && tail -c 10000 crop.pgm >>tpl.pgm
    for m in sqdiff-normed coeff-normed; do
        "$ORUCV" match full.pgm tpl.pgm full.npy --method $m >/dev/null &&
            "$ORUCV" match crop.pgm tpl.pgm crop.npy --method $m >/dev/null || fail "match $m"
        cmp -s <(tail -c +129 crop.npy) <(tail -c +129 full.npy | head -c $((51 * 501 * 4))) ||
            fail "$m: banded scores differ from one call"
    done
    # On a terminal the bands show a bar (here from the first band on);
    # without one, nothing.
    command -v script >/dev/null || { echo "no script(1): the terminal part is skipped"; exit $((failures > 0)); }
    ORUCV_PROGRESS_AFTER_MS=0 script -qec "'$ORUCV' match full.pgm tpl.pgm tty.npy" /dev/null >tty.txt 2>&1
    grep -q "best match at" tty.txt || fail "match on a terminal: $(cat tty.txt)"
    grep -q "match \[#*\.*\] *[0-9]*%" tty.txt || fail "no progress bar on a terminal: $(cat -v tty.txt)"
    ORUCV_PROGRESS_AFTER_MS=0 "$ORUCV" match full.pgm tpl.pgm plain.npy >out.txt 2>err.txt
    [ -s err.txt ] && fail "progress without a terminal: $(cat err.txt)"
    cmp -s tty.npy plain.npy || fail "scores differ on a terminal"
    ;;
profile)
    # The line's pixels in order, the half rounding toward the start: the
    # two directions of one segment differ; RGB gives three values a row,
    # 16-bit samples keep their values.
    printf 'P5 5 3 255\n\x00\x01\x02\x03\x04\x0a\x0b\x0c\x0d\x0e\x14\x15\x16\x17\x18' >ramp.pgm
    "$ORUCV" profile ramp.pgm 0,0 4,2 >fwd.txt && "$ORUCV" profile ramp.pgm 4,2 0,0 >back.txt || fail "profile"
    [ "$(tr '\n' ' ' <fwd.txt)" = "index,x,y,value 0,0,0,0 1,1,0,1 2,2,1,12 3,3,1,13 4,4,2,24 " ] ||
        fail "forward: $(cat fwd.txt)"
    [ "$(tr '\n' ' ' <back.txt)" = "index,x,y,value 0,4,2,24 1,3,2,23 2,2,1,12 3,1,1,11 4,0,0,0 " ] ||
        fail "backward: $(cat back.txt)"
    printf 'P6 2 1 255\n\x01\x02\x03\x04\x05\x06' >pair.ppm
    expect 0 "out:1,1,0,4,5,6" -- "$ORUCV" profile pair.ppm 0,0 1,0
    expect 0 "out:3,3,1,7" -- "$ORUCV" profile wide.pgm 0,0 3,1
    expect 0 "out:2,2,1,32768" -- "$ORUCV" profile wide.pgm 0,0 3,1
    expect 0 "out:t.csv: 5 pixels from (0,0) to (4,2), 1 channel, oruiSampleLine_8u_C1R" -- \
        "$ORUCV" profile ramp.pgm 0,0 4,2 --csv t.csv --plot plot.ppm
    cmp -s t.csv fwd.txt || fail "the --csv table differs from the printed one"
    [ "$(head -c 2 plot.ppm)" = P6 ] || fail "no plot"
    expect 2 "point 5,0 lies outside the 5x3 image" -- "$ORUCV" profile ramp.pgm 5,0 0,0 --csv bad.csv
    expect 2 "X2,Y2 needs X,Y, not '4;2'" -- "$ORUCV" profile ramp.pgm 0,0 "4;2"
    [ -e bad.csv ] && fail "a failed profile wrote its table"
    ;;
orientation)
    # A step rising to the right points along 0 degrees, one rising
    # downward along 90 (the quadratic's offset of 0.1405 included).
    { printf 'P5 6 4 255\n'; for r in 1 2 3 4; do printf '\x00\x00\x00\xc8\xc8\xc8'; done; } >right.pgm
    { printf 'P5 4 6 255\n'; printf '\x00\x00\x00\x00%.0s' 1 2 3; printf '\xc8\xc8\xc8\xc8%.0s' 1 2 3; } >down.pgm
    "$ORUCV" orientation right.pgm right.npy >/dev/null && "$ORUCV" orientation down.pgm down.npy >/dev/null ||
        fail "orientation"
    angle() { od -An -tf4 -j128 -v "$1" | tr -s ' ' '\n' | sed -n "$(($2 + 2))p"; }
    [ "$(angle right.npy 8)" = -0.14050041 ] || fail "step to the right: $(angle right.npy 8)"
    [ "$(angle down.npy 9)" = 90.1405 ] || fail "step downward: $(angle down.npy 9)"
    expect 0 "out:hue = angle, brightness = magnitude" -- "$ORUCV" orientation right.pgm right.ppm
    expect 2 "a PGM holds one channel" -- "$ORUCV" orientation right.pgm right.pgm
    printf 'P5 3 1 255\n\x01\x02\x03' >row.pgm
    expect 2 "needs at least two rows" -- "$ORUCV" orientation row.pgm one.npy
    # Strips of rows (262 of this width) join without seams: rows of a crop
    # across the first seam, its edge rows aside, equal the whole image's.
    "$CLI_PROBE" gray 1000 600 whole.pgm || exit 1
    { printf 'P5 1000 200 255\n'; tail -c +$((16 + 200 * 1000 + 1)) whole.pgm | head -c 200000; } >crop.pgm
    "$ORUCV" orientation whole.pgm whole.npy >/dev/null && "$ORUCV" orientation crop.pgm crop.npy >/dev/null ||
        fail "orientation of whole.pgm and crop.pgm"
    cmp -s <(tail -c +$((129 + 201 * 4000)) whole.npy | head -c $((198 * 4000))) \
        <(tail -c +$((129 + 4000)) crop.npy | head -c $((198 * 4000))) || fail "strips differ from one piece"
    # Strips of rows: memory stays small whatever the height.
    "$CLI_PROBE" gray 1000 20000 tall.pgm || exit 1
    limit_mib=24
    [ "${CLI_SANITIZED:-OFF}" = ON ] && limit_mib=0
    "$CLI_PROBE" run $limit_mib 20 0 -- "$ORUCV" orientation tall.pgm tall.ppm --max-pixels 1000 >probe.txt 2>&1 ||
        fail "orientation tall.pgm: $(cat probe.txt)"
    cat probe.txt
    [ "$(wc -c <tall.ppm)" = $((60000000 + 18)) ] || fail "tall.ppm has $(wc -c <tall.ppm) bytes"
    rm -f tall.pgm tall.ppm
    ;;
demo)
    "$ORUCV" demo demo-out --repeat 2 >out.txt 2>err.txt || fail "demo: $(cat err.txt)"
    [ -s err.txt ] && fail "demo wrote to stderr: $(cat err.txt)"
    [ "$(find demo-out -type f | wc -l)" -ge 10 ] || fail "demo wrote $(find demo-out -type f | wc -l) files"
    if [ $has_png = no ]; then
        grep -qF "no PNG support" out.txt || fail "the demo did not say its images are PGM/PPM"
        [ -z "$(find demo-out -name '*.png')" ] || fail "the demo wrote .png files without PNG support"
    fi
    expect 2 "unexpected argument 'b'" -- "$ORUCV" demo a b
    ;;
install)
    # The installed program finds its library through its relative run path,
    # from any prefix, with no LD_LIBRARY_PATH.
    prefix=$work/prefix
    cmake --install "${CLI_BUILD:?}" --prefix "$prefix" >/dev/null || { fail "cmake --install"; exit 1; }
    (
        unset LD_LIBRARY_PATH
        cd / && "$prefix/bin/orucv" --version >"$work/version.txt" 2>&1 &&
            "$prefix/bin/orucv" canny "$work/gray.pgm" "$work/edges.pgm" >/dev/null
    ) || fail "the installed orucv does not run: $(cat version.txt)"
    mv "$prefix" "$work/moved" && (unset LD_LIBRARY_PATH; "$work/moved/bin/orucv" --version >/dev/null) ||
        fail "the installed orucv does not run after its prefix moved"
    ;;
*)
    echo "unknown case $case_name"
    exit 2
    ;;
esac

[ $failures -eq 0 ] && echo "cli.$case_name: passed" || echo "cli.$case_name: $failures failed"
exit $((failures > 0))
