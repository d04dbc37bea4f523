#!/usr/bin/env bash
# Makes georeferenced test images out of real imagery and keeps them in a cache folder; what is there is left alone.
#
#   scripts/make-test-data.sh [--small | --huge] [FOLDER]
#
# Without an option: the set for measuring, which needs the package marble-data. Colours are NASA's Blue Marble and
# terrain is the shaded SRTM elevation, once in its place and once as a fine grain, so that no block is flat.
# --small: the same kinds, a few hundred pixels each and without the size in their names, from data/sample/world.tif.
# --huge: on top of the set, one file of 360448 x 327680 pixels (118 gigapixels), which repeats a part of the large one.
# FOLDER: by default corvane/test-data in the user's cache folder.
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

imagery="${CORVANE_IMAGERY:-/usr/share/marble/data/maps/earth}"
needed_megabytes=3072 # the set takes 1.1 GB, some more while it is made

mode=standard
folder=
for argument in "$@"; do
    case "$argument" in
        --small) mode=small ;;
        --huge) mode=huge ;;
        -h | --help)
            sed -n '2,/^set -/{/^set -/d;s/^# \{0,1\}//;p}' "${BASH_SOURCE[0]}"
            exit 0
            ;;
        -*) fail "unknown option $argument" ;;
        *) folder="$argument" ;;
    esac
done
if [[ -z "$folder" ]]; then
    folder="${XDG_CACHE_HOME:-$HOME/.cache}/corvane/test-data"
    if [[ "$mode" == small ]]; then
        folder="$folder-small"
    fi
fi
mkdir -p "$folder"
folder="$(cd "$folder" && pwd)"

command -v gdal_translate >/dev/null || fail "gdal_translate not found (Debian: gdal-bin)"
export GDAL_PAM_ENABLED=NO GDAL_CACHEMAX=512 GDAL_NUM_THREADS=ALL_CPUS GDAL_TIFF_INTERNAL_MASK=YES

work="$(mktemp -d "$folder/.making-XXXXXX")"
trap 'rm -rf "$work"' EXIT

calc()
{
    awk "BEGIN { printf \"%.10g\", $* }"
}

# ---- Where the colours and the terrain come from: world pictures, 90 N 180 W at their top left corner.

# colours_per_degree and terrain_per_degree: pixels. The terrain stays empty for the small set.
prepare_small_imagery()
{
    colours="$root/data/sample/world.tif"
    colours_per_degree=7.5
    terrain=
}

prepare_imagery()
{
    [[ -d "$imagery" ]] || fail "no imagery in $imagery (Debian: marble-data)"
    say "test data: preparing colours and terrain"
    colours="$work/colours.tif"
    colours_per_degree=7.5
    gdal_translate -q -co TILED=YES "$imagery/bluemarble/bluemarble.jpg" "$colours"

    {
        echo '<VRTDataset rasterXSize="10800" rasterYSize="5400"><SRS>EPSG:4326</SRS>'
        echo '<GeoTransform>-180,0.0333333333333333,0,90,0,-0.0333333333333333</GeoTransform>'
        echo '<VRTRasterBand dataType="Byte" band="1">'
        local row column
        for ((row = 0; row < 8; row++)); do
            for ((column = 0; column < 16; column++)); do
                simple_source "$(printf '%s/srtm/3/%06d/%06d_%06d.jpg' "$imagery" $row $row $column)" 1 \
                    0 0 675 675 $((column * 675)) $((row * 675)) 675 675
            done
        done
        echo '</VRTRasterBand></VRTDataset>'
    } >"$work/elevation.vrt"
    terrain="$work/terrain.tif"
    terrain_per_degree=30
    gdaldem hillshade -q -z 60 -s 15000 -compute_edges -co TILED=YES "$work/elevation.vrt" "$terrain"

    # The fine grain: mountains of Asia at half their size, repeated without end. The tile is made first, so that
    # the reader of the large mosaic has few sources to look through.
    gdal_translate -q -srcwin 7350 1050 1800 900 -outsize 50% 50% -r nearest "$terrain" "$work/mountains.tif"
    repeated "$work/mountains.tif" 900 450 3600 3600 >"$work/mountains.vrt"
    gdal_translate -q -co TILED=YES "$work/mountains.vrt" "$work/grain-tile.tif"
    repeated "$work/grain-tile.tif" 3600 3600 43200 32400 >"$work/grain.vrt"
}

# simple_source FILE BAND <source window x y width height> <destination window x y width height>
simple_source()
{
    printf '<SimpleSource><SourceFilename>%s</SourceFilename><SourceBand>%s</SourceBand>' "$1" "$2"
    windows "${@:3}"
    echo '</SimpleSource>'
}

# scaled_source FILE BAND OFFSET RATIO <windows as above>
scaled_source()
{
    printf '<ComplexSource resampling="bilinear"><SourceFilename>%s</SourceFilename><SourceBand>%s</SourceBand>' "$1" "$2"
    windows "${@:5}"
    printf '<ScaleOffset>%s</ScaleOffset><ScaleRatio>%s</ScaleRatio></ComplexSource>\n' "$3" "$4"
}

windows()
{
    printf '<SrcRect xOff="%s" yOff="%s" xSize="%s" ySize="%s"/>' "${@:1:4}"
    printf '<DstRect xOff="%s" yOff="%s" xSize="%s" ySize="%s"/>' "${@:5:4}"
}

# repeated FILE ITS_WIDTH ITS_HEIGHT WIDTH HEIGHT: one band, the file side by side until the picture is full.
repeated()
{
    local x y
    echo "<VRTDataset rasterXSize=\"$4\" rasterYSize=\"$5\"><VRTRasterBand dataType=\"Byte\" band=\"1\">"
    for ((y = 0; y < $5; y += $3)); do
        for ((x = 0; x < $4; x += $2)); do
            simple_source "$1" 1 0 0 "$2" "$3" "$x" "$y" "$2" "$3"
        done
    done
    echo '</VRTRasterBand></VRTDataset>'
}

# scene TYPE BANDS GAIN WIDTH HEIGHT WEST NORTH CELL [GEOTRANSFORM]: writes $work/scene.vrt, a part of the world in
# degrees. Values are those of a Byte image times the gain; sums are taken in doubles, so wide types get fine steps.
scene()
{
    local type="$1" bands="$2" gain="$3" width="$4" height="$5" west="$6" north="$7" cell="$8"
    local transform="${9:-$west,$cell,0,$north,0,-$cell}"
    local whole=(0 0 "$width" "$height") band sum=
    if [[ -z "$colours" ]]; then
        prepare_imagery
    fi
    if [[ -n "$terrain" ]]; then
        sum=' subClass="VRTDerivedRasterBand"' # refuses a single source
    fi
    {
        echo "<VRTDataset rasterXSize=\"$width\" rasterYSize=\"$height\"><SRS>EPSG:4326</SRS>"
        echo "<GeoTransform>$transform</GeoTransform>"
        for ((band = 1; band <= bands; band++)); do
            echo "<VRTRasterBand dataType=\"$type\" band=\"$band\"$sum>"
            if ((bands == 1)); then
                echo '<ColorInterp>Gray</ColorInterp>'
            else
                echo "<ColorInterp>$(cut -d ' ' -f $band <<<'Red Green Blue')</ColorInterp>"
            fi
            if [[ -z "$terrain" ]]; then
                in_place "$colours" "$colours_per_degree" "$band" "$(calc "2 * $gain")" "$gain"
            else
                # What flat ground gives is taken off each part of the terrain, so that black stays dark; a part below
                # 0 is cut off at 0.
                echo '<PixelFunctionType>sum</PixelFunctionType>'
                in_place "$colours" "$colours_per_degree" "$band" 0 "$(calc "0.75 * $gain")"
                in_place "$terrain" "$terrain_per_degree" 1 "$(calc "-20 * $gain")" "$(calc "0.18 * $gain")"
                scaled_source "$work/grain.vrt" 1 "$(calc "-40 * $gain")" "$(calc "0.35 * $gain")" "${whole[@]}" "${whole[@]}"
            fi
            echo '</VRTRasterBand>'
        done
        echo '</VRTDataset>'
    } >"$work/scene.vrt"
}

# in_place FILE PIXELS_PER_DEGREE BAND OFFSET RATIO: the part of a world picture that lies under the scene being written.
in_place()
{
    scaled_source "$1" "$3" "$4" "$5" "$(calc "($west + 180) * $2")" "$(calc "(90 - $north) * $2")" \
        "$(calc "$width * $cell * $2")" "$(calc "$height * $cell * $2")" "${whole[@]}"
}

# ---- The files. Each recipe gets the name of the file to write and its width and height.

jpeg=(-co COMPRESS=JPEG -co PHOTOMETRIC=YCBCR -co JPEG_QUALITY=85)
deflate=(-co COMPRESS=DEFLATE -co ZLEVEL=3 -co PREDICTOR=2)
tiled=(-co TILED=YES -co NUM_THREADS=ALL_CPUS -co BIGTIFF=IF_SAFER)

write()
{
    gdal_translate -q "${@:2}" "$work/scene.vrt" "$1"
}

# overviews FILE RESAMPLING: halves until the longer side is below 256.
overviews()
{
    local size levels=() level=2
    size="$(gdalinfo "$1" | sed -n 's/^Size is \([0-9]*\), \([0-9]*\)$/\1 \2/p')"
    local longer=$((${size% *} > ${size#* } ? ${size% *} : ${size#* }))
    while ((longer / (level / 2) >= 256)); do
        levels+=("$level")
        level=$((level * 2))
    done
    gdaladdo -q -r "$2" "$1" "${levels[@]}"
}

# Degrees per pixel so that the width spans that many degrees.
make_rgb_no_overviews()
{
    scene Byte 3 1 "$2" "$3" -120 90 "$(calc "240 / $2")"
    write "$1" "${tiled[@]}" "${jpeg[@]}"
}

make_rgb()
{
    cp "$(path_of rgb-40000x30000-no-overviews.tif)" "$1"
    overviews "$1" average
}

make_rgb_512()
{
    scene Byte 3 1 "$2" "$3" -20 60 "$(calc "80 / $2")"
    write "$1" "${tiled[@]}" "${jpeg[@]}" -co BLOCKXSIZE=512 -co BLOCKYSIZE=512
    overviews "$1" average
}

make_uint16()
{
    scene UInt16 3 200 "$2" "$3" -20 60 "$(calc "80 / $2")"
    write "$1" "${tiled[@]}" "${deflate[@]}"
    overviews "$1" average
}

make_palette()
{
    scene Byte 1 1 "$2" "$3" -20 60 "$(calc "80 / $2")"
    local table
    table="$(awk 'BEGIN {
        print "<ColorInterp>Palette</ColorInterp><ColorTable>"
        for (i = 0; i < 256; i++)
            printf "<Entry c1=\"%d\" c2=\"%d\" c3=\"%d\" c4=\"255\"/>", i, (i * 3) % 256 / 2 + i / 2, 255 - i
        print "</ColorTable>" }')"
    awk -v table="$table" '{ sub("<ColorInterp>Gray</ColorInterp>", table); print }' "$work/scene.vrt" >"$work/palette.vrt"
    mv "$work/palette.vrt" "$work/scene.vrt"
    write "$1" "${tiled[@]}" -co COMPRESS=LZW
    overviews "$1" nearest
}

# Turned by 30 degrees against the axes, about its top left corner.
make_rotated()
{
    local cell
    cell="$(calc "40 / $2")"
    scene Byte 3 1 "$2" "$3" 0 60 "$cell" "0,$(calc "$cell * cos(0.5235987756)"),$(calc "$cell * sin(0.5235987756)"),60,$(calc "$cell * sin(0.5235987756)"),$(calc "-$cell * cos(0.5235987756)")"
    write "$1" "${tiled[@]}" "${jpeg[@]}"
    overviews "$1" average
}

# In metres of Europe's equal-area projection; the corners that the source does not reach have no data.
warp_to_europe()
{
    gdalwarp -q -overwrite -t_srs EPSG:3035 -ts "$2" "$3" -te 1600000 400000 7200000 4600000 -r bilinear \
        "${@:4}" "$work/scene.vrt" "$1"
}

make_nodata()
{
    scene Byte 3 1 "$2" "$3" -15 65 "$(calc "50 / $2")"
    warp_to_europe "$work/europe.tif" "$2" "$3" -dstnodata 0
    gdal_translate -q "${tiled[@]}" "${deflate[@]}" "$work/europe.tif" "$1"
    overviews "$1" average
}

make_mask()
{
    scene Byte 3 1 "$2" "$3" -15 65 "$(calc "50 / $2")"
    warp_to_europe "$work/europe.tif" "$2" "$3" -dstalpha
    gdal_translate -q -b 1 -b 2 -b 3 -mask 4 "${tiled[@]}" "${jpeg[@]}" "$work/europe.tif" "$1"
    overviews "$1" average
}

make_strips()
{
    scene Byte 3 1 "$2" "$3" -20 70 "$(calc "120 / $2")"
    write "$1" "${deflate[@]}" -co BLOCKYSIZE=16 -co NUM_THREADS=ALL_CPUS
}

make_float()
{
    scene Float32 1 0.0123 "$2" "$3" 0 60 "$(calc "40 / $2")"
    write "$1" "${tiled[@]}" -co COMPRESS=DEFLATE -co ZLEVEL=3 -co PREDICTOR=3
    overviews "$1" average
}

# Ground control points and no transform: the four corners and the middle, which lies a little off.
make_gcp()
{
    scene Byte 3 1 "$2" "$3" 0 60 "$(calc "40 / $2")"
    local height
    height="$(calc "40 * $3 / $2")"
    write "$1" "${tiled[@]}" "${jpeg[@]}" -a_srs EPSG:4326 \
        -gcp 0 0 0 60 -gcp "$2" 0 40 60 -gcp 0 "$3" 0 "$(calc "60 - $height")" -gcp "$2" "$3" 40 "$(calc "60 - $height")" \
        -gcp "$(($2 / 2))" "$(($3 / 2))" 20.02 "$(calc "60 - $height / 2 + 0.01")"
    overviews "$1" average
}

# One BigTIFF whose index points 11 x 20 times at the tiles of the large file's top left part. Its overviews are those of
# that part as long as the part is whole tiles, then of the whole.
make_huge()
{
    local large="$folder/rgb-40000x30000.tif" lower="$work/lower-levels.tif" top="$work/upper-levels.tif"
    command -v python3 >/dev/null || fail "python3 not found"
    "$root/scripts/repeat_tiff.py" "$large" 11 20 "$lower" # down to 5632 x 5120
    gdal_translate -q -outsize 2816 2560 -r average "${tiled[@]}" "${jpeg[@]}" "$lower" "$top"
    overviews "$top" average
    "$root/scripts/repeat_tiff.py" "$large" 11 20 "$1" "$top"
}

# The large set's sizes shrink by this much for the small one: 40000 pixels by 50, all others by 10.
path_of()
{
    if [[ "$mode" == small ]]; then
        printf '%s/%s' "$folder" "$(sed -E 's/-[0-9]+x[0-9]+//' <<<"$1")"
    else
        printf '%s/%s' "$folder" "$1"
    fi
}

# make NAME RECIPE: writes under another name first, so that a file under its own name is whole.
make()
{
    local path width height shrink=1 start=$SECONDS
    path="$(path_of "$1")"
    if [[ -s "$path" ]]; then
        return
    fi
    width="$(sed -E 's/.*-([0-9]+)x([0-9]+).*/\1/' <<<"$1")"
    height="$(sed -E 's/.*-([0-9]+)x([0-9]+).*/\2/' <<<"$1")"
    if [[ "$mode" == small ]]; then
        shrink=$((width == 40000 ? 50 : 10))
    fi
    "$2" "$work/${path##*/}" $((width / shrink)) $((height / shrink))
    mv "$work/${path##*/}" "$path"
    say "test data: ${path##*/} in $((SECONDS - start)) s"
}

make_all()
{
    make rgb-40000x30000-no-overviews.tif make_rgb_no_overviews
    make rgb-40000x30000.tif make_rgb
    make rgb-8000x6000-512.tif make_rgb_512
    make uint16-8000x6000.tif make_uint16
    make palette-8000x6000.tif make_palette
    make rotated-4000x3000.tif make_rotated
    make nodata-4000x3000.tif make_nodata
    make mask-4000x3000.tif make_mask
    make strips-12000x9000.tif make_strips
    make float-4000x3000.tif make_float
    make gcp-4000x3000.tif make_gcp
    if [[ "$mode" == huge ]]; then
        make huge-360448x327680.tif make_huge
    fi
}

colours=
terrain=
if [[ "$mode" == small ]]; then
    prepare_small_imagery
elif [[ ! -s "$folder/rgb-40000x30000.tif" ]]; then
    free_megabytes="$(df -Pm "$folder" | awk 'NR == 2 { print $4 }')"
    if ((free_megabytes < needed_megabytes)); then
        fail "$folder has $free_megabytes MB free; the test data needs $needed_megabytes MB. Give another folder:" \
            "scripts/make-test-data.sh FOLDER"
    fi
fi
make_all
du -h --apparent-size -- "$folder"/*.*
