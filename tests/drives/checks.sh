# shellcheck shell=bash
# For each drive what it wants of the bench before, and what must be left after it. Sourced by play.
# shellcheck disable=SC2034,SC2154

run_files=(recording.wav nvh-rpm.txt nvh-results.txt nvh-datavalues.txt nvh-vehiclespeed.txt nvh-motortorque.txt)

fail() {
    echo "$drive: $*" >&2
    exit 1
}

# equal WHAT EXPECTED SEEN
equal() {
    [[ $2 == "$3" ]] || fail "$1: expected \"$2\", found \"$3\""
}

# fault ENDPOINT FAULT TIMES: of the server.
fault() {
    curl -fsS -d "{\"endpoint\": \"$1\", \"fault\": \"$2\", \"times\": $3}" "$NVH_BENCH_URL/bench/fault" >/dev/null
}

# packages DIRECTORY [TAG…]: one package of each tag lies there, in the order of the tags' names, and nothing else.
packages() {
    local names
    names=$(find "$1" -maxdepth 1 -name '*.tgz' -printf '%f\n' | sort)
    equal "packages in $1" "${*:2}" "$(sed -E 's/^DESK0TEST0VEHICLE-Premium-v3.0_pass-CAR_(.*)-[0-9]+.tgz$/\1/' <<<"$names" | xargs)"
}

saved() { packages /tmp "$@"; }
arrived() { packages "$NVH_BENCH_STATE/packages" "$@"; }

# holds DIRECTORY FILE…: the one package there holds these files in this order; they are unpacked into /tmp/contents.
holds() {
    mkdir /tmp/contents
    equal "package in $1" "${*:2}" \
        "$(tar -xvzf "$1"/*.tgz -C /tmp/contents --transform 's,^tmp/,,' --show-transformed-names | xargs)"
}

# lasts FILE LEAST MOST: a complete recording of the eight microphones, in tenths of a second. It begins a little late,
# the later the busier the machine.
lasts() {
    local file=/tmp/contents/$1 bytes riff_size
    bytes=$(stat -c %s "$file")
    riff_size=$(od -A n -t u4 -j 4 -N 4 "$file" | xargs)
    equal "size in the header of $1" "$((bytes - 8))" "$riff_size"
    ((bytes >= $2 * 76800 && bytes <= $3 * 76800)) || fail "$1 has $bytes bytes, not $2 to $3 tenths of a second"
}

# marks MARK…: of the tests in the list, in the order of their rows.
marks() {
    equal marks "$*" "$(tr -d '\n' </tmp/contents/nvh-vdtStatic.txt | grep -oE '"[0-9]+": *\{[^}]*\}' |
        sort -t '"' -k 2n | sed -E 's/.*"Value": *"([A-Z]+)".*/\1/' | xargs)"
}

with_real_recorder() {
    case $drive in
        test-run | manual-recording | timed-recording | clips-*) true ;;
        *) false ;;
    esac
}

prepare() {
    case $drive in
        failed-upload) fault upload refuse 1 ;;
        failed-post) fault sonvara_files refuse 1 ;;
        mode-in-upload) fault upload delay:2000 2 ;;
        mode-in-download) fault static delay:2000 2 ;;
        server-down) finish factory-server ;;
        vehicle-status)
            # A car knows its values from the start, what they say only later.
            local name
            for name in WINDOW_open{FL,FR,RL,RR} AUDIO_{playing,muted} CLIMATE_power; do
                values+=(--set "$name=bool:invalid")
            done
            values+=(--set SEAT_heaterLevelFL=int:invalid --set SEAT_heaterLevelFR=int:invalid --set CLIMATE_fanLevel=real:invalid)
            ;;
        longest-recording)
            # Only the screen's clock: the recorder and curl keep the real time.
            clock=(LD_PRELOAD="$(echo /usr/lib/*/faketime/libfaketimeMT.so.1)" FAKETIME='+0 x60'
                FAKETIME_ONLY_CMDS=helixdash ASAN_OPTIONS=verify_asan_link_order=0)
            ;;
    esac
}

check() {
    local nothing_loose=yes
    case $drive in
        test-run)
            saved
            arrived 65MPH
            holds "$NVH_BENCH_STATE/packages" "${run_files[@]}" nvh-vdtStatic.txt
            lasts recording.wav 44 52
            ;;
        manual-recording)
            saved WOT
            arrived
            holds /tmp "${run_files[@]}" nvh-vdtStatic.txt
            lasts recording.wav 15 30
            grep -q ', -12$' /tmp/contents/nvh-rpm.txt || fail "the motor's speed is not in its log"
            ;;
        timed-recording)
            saved 65MPH
            holds /tmp "${run_files[@]}" nvh-vdtStatic.txt
            lasts recording.wav 44 52
            ;;
        brake-squeal-standing) saved INVALID ;;
        brake-squeal-moving) saved && arrived BSQUEAL ;;
        pedal-stop) saved && nothing_loose=no ;;
        longest-recording)
            saved 35MPH
            holds /tmp "${run_files[@]}" nvh-vdtStatic.txt
            ;;
        discard) saved Regen ;;
        upload-all-one) saved && arrived 35MPH ;;
        upload-all-several) saved && arrived 42_43_STEADY 65MPH APPTEST ;;
        failed-upload) saved && arrived BSR ;;
        failed-post) saved && arrived 35MPH ;;
        server-down)
            saved SERVICE
            arrived
            holds /tmp "${run_files[@]}" nvh-vdtStatic.txt
            marks FAIL PASS FAIL FAIL FAIL FAIL FAIL FAIL FAIL NA
            ;;
        clips-*)
            saved 35MPH
            holds /tmp recording.wav ambient.wav notes.wav "${run_files[@]:1}" nvh-vdtStatic.txt
            lasts recording.wav 6 15
            lasts notes.wav 15 30
            lasts ambient.wav 30 40
            ;;
        note-untapped) saved ;;
        wheel) saved 35MPH && arrived 42_43_STEADY ;;
        wheel-lost-recording) saved WOT ;;
        vdt-list)
            arrived 35MPH
            holds "$NVH_BENCH_STATE/packages" "${run_files[@]}" nvh-vdtStatic.txt
            marks FAIL PASS FAIL FAIL FAIL PASS FAIL FAIL FAIL FAIL FAIL NA
            ;;
        mode-in-recording) saved SERVICE ;;
        mode-in-upload) saved ;;
        wheel-lost-ready | vehicle-status | mode-in-ready | mode-in-download) saved && arrived ;;
        *) fail "nobody has said what this drive leaves" ;;
    esac
    # What a run writes is packed or discarded.
    local loose
    loose=$(find /tmp -maxdepth 1 \( -name '*.wav' -o -name 'nvh-*' \) -printf '%f ')
    [[ $nothing_loose == no || -z $loose ]] || fail "left lying about: $loose"
}
