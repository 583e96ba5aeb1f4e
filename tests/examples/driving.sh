# SPDX-License-Identifier: MIT
# Sourced by the suites beside it: drives an example on $DISPLAY. Its program is $program.
. "$here/../host/checks.sh"
. "$here/../host/capturing.sh"
# A sanitized example has nothing to add.
export LSAN_OPTIONS=${LSAN_OPTIONS:+$LSAN_OPTIONS:}print_suppressions=0

# Where neither the pointer nor a window of an example stands.
readonly quiet=60x40+20+500

overlay_is_up() { ! same "$scratch/now.png" "$scratch/screen.png" "$quiet"; }
overlay_is_gone() { same "$scratch/now.png" "$scratch/screen.png" "$quiet"; }

# start [ARGUMENT...]: what the example prints goes to out and err.
start() {
    "$program" "$@" >"$scratch/out" 2>"$scratch/err" &
    pid=$!
}

# An example prints nothing but what Qt says about the style sheets with the stray brace, and, where
# a window closes under its hands, about that.
expect_silence() {
    [ ! -s "$scratch/out" ] || problem "printed: $(cat "$scratch/out")"
    grep -vE '^Could not parse stylesheet of object |^qt\.qpa\.xcb: QXcbConnection: XCB error: 3 \(BadWindow\)' "$scratch/err" | grep . &&
        problem "printed the above"
}

# expect_region FILE: the picture of the region that drag_region drags out.
expect_region() {
    "$im" convert "$scratch/screen.png" -crop 300x200+200+150 +repage "$scratch/expected.png"
    same "$1" "$scratch/expected.png" || problem "$1 differs from what was on the screen"
}

# locate SEARCH...: sets X, Y, WIDTH and HEIGHT to where the window stands, without its frame.
locate() {
    local window
    window=$(xdotool search --onlyvisible "$@" 2>/dev/null) || return
    eval "$(xwininfo -id "$window" | sed -n \
        -e 's/.*Absolute upper-left \([XY]\): */\1=/p' -e 's/^ *Width: /WIDTH=/p' -e 's/^ *Height: /HEIGHT=/p')"
}

# Whether a window of that class shows the region in now.png, and nothing else.
shows_the_picture() {
    locate --class "$1" || return
    "$im" convert "$scratch/now.png" -crop "${WIDTH}x$HEIGHT+$X+$Y" +repage "$scratch/shown.png"
    "$im" convert "$scratch/screen.png" -crop 300x200+200+150 +repage "$scratch/expected.png"
    same "$scratch/shown.png" "$scratch/expected.png"
}

# wait_for COMMAND...
wait_for() {
    for ((i = 0; i < 600; i++)); do
        "$@" && return
        sleep 0.05
    done
    problem "waited in vain: $*"
}
