The instance limit: at most 16 running programs, this one included. The
count covers every process of the machine, so the case runs in a PID
namespace of its own (with its own /proc): cvadm processes of other tests
or other users do not count, and its stand-ins do not leak out. Where no
namespace can be made (no privilege), the case is skipped.

  $ . "$TESTDIR/lib.sh"
  $ unshare --pid --fork --mount-proc true 2>/dev/null || exit 80
  $ cp "$(command -v sleep)" "$PWD/cvadm"
Every transcript runs in a namespace of its own (tests/CMakeLists.txt):
its first process is the transcript runner:

  $ ps -o args= -p 1 | grep -c cram
  1

  $ export -f cv tracelog
  $ isolated() { unshare --pid --fork --mount-proc /bin/bash -c "$1"; }
  $ started() { until [ "$(ps -e -o comm= | grep -cx cvadm)" -ge "$1" ]; do sleep 0.05; done; }
  $ export -f started

Only the namespace's own processes are seen:

  $ isolated 'ps -e -o comm= | sort'
  bash
  ps
  sort

Fifteen others and this one make sixteen: the start goes on. A
seventeenth stops it:

  $ isolated '
  >   for i in $(seq 15); do "$PWD/cvadm" 60 & done; started 15
  >   cv show version; echo "[$?]"
  >   "$PWD/cvadm" 60 & started 16
  >   cv show version; echo "[$?]"'
  Software Version   : 21.01.025
  Driver   Version   : 21.01.030
  [0]
  system is busy now, please try again later!
  [1]
  $ tracelog | grep -c 'system is busy!'
  1

The stand-ins ended with their namespace:

  $ ps -e -o args= | grep -c "^$PWD/cvadm 60"
  0
  [1]
