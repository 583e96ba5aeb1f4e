# SPDX-License-Identifier: MIT
# Sourced after checks.sh by the suites that take captures with real input on $DISPLAY. The host is
# $host, the tools are in $tools.
im=$tools/imagemagick
export HOME=$scratch XDG_CONFIG_HOME=$scratch/config XDG_RUNTIME_DIR=$scratch

# put_on_desktop PICTURE SIZE: also leaves what is on the screen then in screen.png.
put_on_desktop() {
    "$im" convert -size "$2" "$1" -depth 8 "$scratch/desktop.png"
    "$im" display -window root "$scratch/desktop.png"
    "$im" import -silent -window root "$scratch/screen.png"
}

# same A B [AREA]: whether both pictures have the same pixels there.
same() {
    local area=${3:+[$3]}
    [ "$("$im" compare -metric AE "$1$area" "$2$area" null: 2>&1)" = 0 ]
}

# begin OPTION...: starts a capture and waits until its window is on the screen.
begin() {
    "$host" --once "$@" >"$scratch/out" 2>"$scratch/err" &
    pid=$!
    timeout 60 xdotool search --sync --onlyvisible --class capture-host >/dev/null
    await screen_is_covered
}
screen_is_covered() { ! same "$scratch/now.png" "$scratch/screen.png"; }

# drag_region: from 200,150 to 499,349, with the pointer elsewhere in now.png. Waits until the
# release has put the loupe away: while a window manager holds the pointer for a click, the X server
# loses a release that is overtaken by the next press.
drag_region() {
    cp "$scratch/now.png" "$scratch/idle.png"
    xdotool mousemove 200 150 mousedown 1 mousemove 300 200 mousemove 499 349 mouseup 1
    await region_stands
}
region_stands() {
    same "$scratch/now.png" "$scratch/screen.png" 200x100+250+200 &&
        same "$scratch/now.png" "$scratch/idle.png" 80x80+505+375
}

# end NAME WANTED: waits for the host and checks how it ended.
end() {
    wait "$pid"
    expect_status "$1" "$2" $?
}

# await CONDITION...: takes screenshots to now.png until the command succeeds.
await() {
    for ((i = 0; i < 200; i++)); do
        "$im" import -silent -window root "$scratch/now.png"
        "$@" && return
    done
    problem "waited in vain: $*"
    return 1
}

# click X Y: waits until something came of it. Hovering alone changes a button, so the pointer is
# there first.
click() {
    xdotool mousemove "$1" "$2"
    "$im" import -silent -window root "$scratch/before.png"
    await still
    cp "$scratch/now.png" "$scratch/before.png"
    xdotool click 1
    await changed
}

# Whether the screen is as it was when this was asked before.
still() {
    same "$scratch/now.png" "$scratch/before.png" && return
    cp "$scratch/now.png" "$scratch/before.png"
    return 1
}

changed() { ! same "$scratch/now.png" "$scratch/before.png"; }
