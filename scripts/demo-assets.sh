# demo-assets.sh: movies, backgrounds and bitmaps of the demo disc, all made by ffmpeg. Sourced by scripts/demo, which
# sets $assets. Every file is made once and then kept.

seconds=30   # of each movie
font=/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf

encode() { ffmpeg -nostdin -v error -y "$@"; }

# kept FILE: is it there from an earlier run?
kept() { [ -f "$1" ] && echo "$1 is there from an earlier run"; }

# movie NAME PICTURE SOUND: a program stream of MPEG-2 and AC-3.
movie() {
    local to=$assets/$1.vob
    kept "$to" && return
    encode -f lavfi -i "$2" -f lavfi -i "$3" -t "$seconds" -target pal-dvd -aspect 4:3 "$assets/part.vob"
    mv "$assets/part.vob" "$to"
    echo "$to"
}

# A note every half second over a slower one in the other ear: steps of a scale from a base, in Hz.
melody() {
    local note="0.3*exp(-3*mod(t,0.5))*sin(2*PI*t*$1*pow(2,mod($2*floor(2*t),12)/12))"
    local bass="0.3*exp(-2*mod(t,1))*sin(2*PI*t*$1/2*pow(2,mod($3*floor(t),12)/12))"
    echo "aevalsrc='$note|$bass':s=48000"
}

# text SIZE X Y TEXT: a filter that writes. X may name the text's width, tw.
text() { echo ",drawtext=fontfile=$font:fontcolor=white:fontsize=$1:x=$2:y=$3:text='$4'"; }

# background FILE ASPECT SIZE TEXTS [MOVIE SECOND X Y]...: what lies under a menu: excerpts of the movies on a gradient.
# A FILE that ends in .m2v is a still: an elementary stream of one picture. One that ends in .vob is animated: six
# seconds of a program stream.
background() {
    local to=$assets/$1 aspect=$2 size=$3 texts=$4 n=0 inputs=() graph
    local gradient="gradients=s=720x576:r=25:c0=0x101828:c1=0x38507c:x0=0:y0=0:x1=200:y1=575:speed=0.02"
    shift 4
    kept "$to" && return
    graph="[0:v]null[p0]"
    while [ $# -gt 0 ]; do
        n=$((n + 1))
        inputs+=(-ss "$2" -t 6 -i "$assets/$1.vob")
        graph+=";[$n:v]setpts=PTS-STARTPTS,scale=$size[m$n];[p$((n - 1))][m$n]overlay=$3:$4[p$n]"
        shift 4
    done
    graph+=";[p$n]null$texts"
    case $to in
    *.m2v)
        encode -f lavfi -i "$gradient" "${inputs[@]}" -filter_complex "$graph" -frames:v 1 -aspect "$aspect" \
            -c:v mpeg2video -q:v 2 -f mpeg2video "$assets/part.m2v"
        printf '\x00\x00\x01\xB7' >>"$assets/part.m2v"   # the sequence's end, so that players show the picture at once
        mv "$assets/part.m2v" "$to"
        ;;
    *.vob)
        encode -f lavfi -i "$gradient" "${inputs[@]}" -filter_complex "$graph" -t 6 -an -target pal-dvd \
            -aspect "$aspect" "$assets/part.vob"
        mv "$assets/part.vob" "$to"
        ;;
    esac
    echo "$to"
}

# A bitmap is drawn as one expression of ffmpeg's geq filter, the value of the pixel at X, Y; later shapes lie over
# earlier ones.
blank() { picture=0; }
# box VALUE X Y WIDTH HEIGHT
box() { picture="if(between(X,$2,$2+$4-1)*between(Y,$3,$3+$5-1),$1,$picture)"; }
# frame VALUE X Y WIDTH HEIGHT THICKNESS
frame() {
    box "$@"
    box 0 $(($2 + $6)) $(($3 + $6)) $(($4 - 2 * $6)) $(($5 - 2 * $6))
}
# arrow VALUE X Y SIZE: a triangle that points right; X is its left edge, Y the line of its point.
arrow() { picture="if(gte(X,$2)*lt(abs(Y-$3),$4-(X-$2)/2),$1,$picture)"; }

# codes NAME: the picture as a bitmap of pixel codes, NAME.bmp.
codes() {
    local to=$assets/$1.bmp
    kept "$to" && return
    encode -f lavfi -i "nullsrc=s=720x576,format=gray,geq=lum='$picture'" -frames:v 1 "$to"
    echo "$to"
}

# highlights NAME COLOURS SHAPES TEXTS MAP: the bitmaps of a menu whose colours the engine is to find, in wide form and
# squeezed for letterbox display.
#   NAME.bmp, NAME_lb.bmp          32 bits: SHAPES with softened edges and TEXTS, both as alpha, over COLOURS
#   NAME_map.bmp, NAME_map_lb.bmp  8 bits: MAP, in which every pixel is the number of the button that it belongs to
highlights() {
    local to=$assets/$1 gray="nullsrc=s=720x576,format=gray" squeeze="if(between(Y,72,503),lum(X,(Y-72)*4/3),0)"
    kept "$to.bmp" && return
    encode -f lavfi -i "$2" -f lavfi -i "$gray,geq=lum='$3',gblur=1.5$4" -f lavfi -i "$gray,geq=lum='$5'" \
        -filter_complex "[0]split[c][clb];
            [1]split[a][alb];[c][a]alphamerge[wide];[alb]geq=lum='$squeeze'[asq];[clb][asq]alphamerge[lb];
            [2]split[map][mlb];[mlb]geq=lum='$squeeze':i=nearest[maplb]" \
        -map '[lb]' -frames:v 1 -pix_fmt bgra "${to}_lb.bmp" -map '[map]' -frames:v 1 "${to}_map.bmp" \
        -map '[maplb]' -frames:v 1 "${to}_map_lb.bmp" -map '[wide]' -frames:v 1 -pix_fmt bgra "$assets/part.bmp"
    mv "$assets/part.bmp" "$to.bmp"
    echo "$to.bmp"
}
