# shellcheck shell=bash
# Shared by bench/up and bench/down: the state directory, and the programs that run in it.
#
# For each program NAME the directory holds NAME.pid ("PID STARTTIME") and NAME.log. A process is taken for ours only if
# it still has the start time that was noted, so that a number which the system has given away again is never touched.

state=${NVH_BENCH_STATE:-/tmp/nvh-bench-$(id -u)}

# In the order of starting; ended the other way round.
# shellcheck disable=SC2034
programs=(sound-server monitor-reader cabin-sound gateway-sim factory-server)

die() {
    echo "${0##*/}: $*" >&2
    exit 1
}

# The path goes into configuration files of four programs, each with its own idea of quoting, and into the name of a
# socket.
enter_state() {
    [[ $state =~ ^/[A-Za-z0-9/._+-]+$ ]] || die "NVH_BENCH_STATE=$state: wanted is an absolute path of plain characters"
    ((${#state} <= 80)) || die "NVH_BENCH_STATE=$state: too long for the name of a socket"
    umask 077
    mkdir -p "$state"
    [[ -O $state ]] || die "$state belongs to somebody else; set NVH_BENCH_STATE"
    exec 9>"$state/lock"
    flock -w 60 9 || die "another bench/up or bench/down has been at work in $state for a minute"
}

# In clock ticks since the system started; fails if there is no such process.
start_time() {
    local stat
    { stat=$(<"/proc/$1/stat"); } 2>/dev/null || return 1
    # The second field, the program's name, may hold blanks; the rest is counted from the third.
    local -a fields
    read -ra fields <<<"${stat##*) }"
    [[ ${fields[0]} != Z ]] && echo "${fields[19]}"
}

# The process number of a program that runs; fails if it does not.
pid_of() {
    local pid started
    [[ -e $state/$1.pid ]] && read -r pid started <"$state/$1.pid" || return 1
    [[ -n $started && $(start_time "$pid") == "$started" ]] && echo "$pid"
}

# spawn NAME COMMAND…: starts a program that outlives this script and keeps nothing of its caller open.
spawn() {
    local name=$1
    shift
    # Now, not when the child comes round to it: the words of the last run must not pass for this one's.
    : >"$state/$name.log"
    setsid "$@" </dev/null >"$state/$name.log" 2>&1 9>&- &
    echo "$! $(start_time $!)" >"$state/$name.pid"
}

# ended_within NAME SECONDS
ended_within() {
    for ((i = 0; i < 20 * $2; ++i)); do
        pid_of "$1" >/dev/null || return 0
        sleep 0.05
    done
    return 1
}

# finish NAME: asks a program to end, and insists after five seconds. Fails if it was not running.
finish() {
    local pid ran=1
    if pid=$(pid_of "$1"); then
        ran=0
        kill -TERM "$pid" 2>/dev/null || true
        if ! ended_within "$1" 5; then
            kill -KILL "$pid" 2>/dev/null || true
            ended_within "$1" 5 || die "$1 (process $pid) does not end"
        fi
    fi
    rm -f "$state/$1.pid"
    return $ran
}
